#pragma once
// The composition root: makes every object of the program, gives each what it needs, and takes all of it down
// again in order. The only place that knows which implementations run. Main thread only.

#include "App/AppModel.h"
#include "Main/Desktop.h"
#include "Main/DesktopApplication.h"
#include "Main/Machine.h"
#include "Main/MainWindow.h"
#include "Main/MenuBarExtra.h"
#include "Main/PanelWindow.h"
#include "Main/QuitGate.h"
#include "Main/Screens.h"
#include "Main/WindowPresence.h"
#include "Persistence/SettingsStore.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Platform/SingleInstance.h"

#include <QEventLoop>
#include <QGuiApplication>

#include <optional>

namespace cairnfield {

class CairnfieldApp final {
public:
    /// The application object exists and outlives this, and so does `instance`, which has been claimed.
    CairnfieldApp(const BaseDirectories& directories, SingleInstance& instance);
    ~CairnfieldApp();

    /// Runs until the program is to end; then ends everything that is under way. Gives the exit status.
    int run(Launch launch);

private:
    void connectWindows();
    Task<> end(QEventLoop& loop);

    SingleInstance& instance_;
    // In the order in which things need each other: what comes later goes first.
    Machine machine_;
    Desktop desktop_;
    ApplicationSupport support_;
    FileUserDefaults defaults_;
    SettingsStore settings_{defaults_};
    MainWindow window_{defaults_};
    PanelWindow panel_;
    DesktopApplication application_{window_, panel_};
    AppModel model_;
    TaskHandle<> started_;
    Screens screens_;
    std::optional<MenuBarExtra> menuBarExtra_;  ///< until the end begins: nothing opens any more then
    WindowPresence presence_;
    QuitGate quitGate_{*qGuiApp, model_.state().cleanupsUnderWay};
};

}  // namespace cairnfield
