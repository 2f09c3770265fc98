#pragma once
// The view models of all screens. They outlive the windows that show them: a window that is opened again goes
// on where the last one was. Main thread only.

#include "App/AppModel.h"
#include "Features/Appearance/AppearanceViewModel.h"
#include "Features/CleanupReview/CleanupReviewViewModel.h"
#include "Features/History/HistoryViewModel.h"
#include "Features/MenuBar/MenuBarViewModel.h"
#include "Features/Preferences/PreferencesViewModel.h"
#include "Features/RecoveryVault/RecoveryVaultViewModel.h"
#include "Features/Root/RootViewModel.h"
#include "Features/SavePanel/SheetSavePanel.h"
#include "Features/WatchedFolders/WatchedFoldersViewModel.h"
#include "Features/Worktrees/WorktreesViewModel.h"
#include "Main/Desktop.h"
#include "Main/Machine.h"

#include <QVariantMap>

namespace cairnfield {

struct Screens {
    /// All of them outlive this. `started` is the model's start-up.
    Screens(AppModel& model, const TaskHandle<>& started, Machine& machine, Desktop& desktop,
            Application& application, const FilePath& home);

    /// By the names of the window's properties.
    [[nodiscard]] QVariantMap windowContent();
    /// By the names of the panel's properties.
    [[nodiscard]] QVariantMap panelContent();

    AppearanceViewModel appearance;
    RootViewModel root;
    CleanupReviewViewModel cleanupReview;
    WorktreesViewModel worktrees;
    WatchedFoldersViewModel watchedFolders;
    SheetSavePanel savePanel;
    RecoveryVaultViewModel recovery;
    HistoryViewModel history;
    PreferencesViewModel preferences;
    MenuBarViewModel menuBar;
};

}  // namespace cairnfield
