#pragma once
// What is to be seen on the pictures: a name, a size, and how the screen gets there.

#include "App/AppState.h"
#include "Features/History/HistoryViewModel.h"
#include "Features/Preferences/PreferencesViewModel.h"
#include "Features/RecoveryVault/RecoveryVaultViewModel.h"
#include "Features/Root/RootViewModel.h"
#include "Features/SavePanel/SheetSavePanel.h"
#include "Features/WatchedFolders/WatchedFoldersViewModel.h"
#include "Features/Worktrees/WorktreesViewModel.h"

#include <QSize>

#include <functional>
#include <string>
#include <vector>

namespace cairnfield {

/// What a scene may set and do.
struct Stage {
    AppState& state;
    RootViewModel& root;
    WorktreesViewModel& worktrees;
    CleanupReviewViewModel& review;
    WatchedFoldersViewModel& folders;
    PreferencesViewModel& preferences;
    HistoryViewModel& history;
    RecoveryVaultViewModel& recovery;
    SheetSavePanel& savePanel;
};

enum class Surface { window, panel };

struct Scene {
    std::string name;
    std::function<void(Stage&)> set;
    QSize size{1080, 720};  ///< of the window; the panel has its own
    Surface surface = Surface::window;
};

[[nodiscard]] std::vector<Scene> scenes();

}  // namespace cairnfield
