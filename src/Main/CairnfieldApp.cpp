#include "Main/CairnfieldApp.h"

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Logging/Log.h"

#include <QGuiApplication>
#include <QTimer>

#include <cstdlib>

namespace cairnfield {

namespace {

/// So long the window waits for the desktop to say whether it is light or dark, rather than turn dark before
/// the person's eyes.
constexpr std::chrono::milliseconds appearanceLimit{150};

/// So long the end waits for what is under way. Our own work ends at once; a child of another program that
/// ignores that it was told to end could keep us for as long as it lives.
constexpr std::chrono::milliseconds endLimit{600};

/// Without taking anything down, since what does not end still uses it. Every file on disk is whole at any
/// moment.
[[noreturn]] void leaveAtOnce(int status) {
    Log::app().warn("Something under way does not end; it is left behind");
    std::_Exit(status);
}

}  // namespace

CairnfieldApp::CairnfieldApp(const BaseDirectories& directories, SingleInstance& instance)
    : instance_(instance),
      desktop_(QDBusConnection::sessionBus(), machine_, directories),
      support_(directories.dataHome, directories.configHome),
      defaults_(support_.settingsFile(), machine_.blocking, machine_.continuousClock, support_.notices()),
      model_(settings_, {.mainThread = machine_.mainThread,
                         .pool = machine_.pool,
                         .blocking = machine_.blocking,
                         .walking = machine_.walking,
                         .continuousClock = machine_.continuousClock,
                         .wallClock = machine_.wallClock,
                         .processRunner = machine_.processRunner,
                         .treeMeasurer = machine_.treeMeasurer,
                         .authorization = machine_.authorization,
                         .capacityReader = machine_.capacityReader,
                         .volumes = machine_.volumes,
                         .fileEventStreams = machine_.fileEventStreams,
                         .notifications = desktop_.notifications,
                         .notificationCenter = desktop_.notificationCenter,
                         .launchAtLogin = desktop_.launchAtLogin,
                         .updates = desktop_.updates,
                         .application = application_,
                         .workspace = desktop_.workspace,
                         .support = support_,
                         .home = directories.home}),
      started_(spawn(machine_.mainThread, model_.start())),
      screens_(model_, started_, machine_, desktop_, application_, directories.home),
      presence_(machine_.mainThread, desktop_.statusItem, machine_.continuousClock,
                {.isWindowOpen = [this] { return window_.isOpen(); },
                 .showWindow = [this] { window_.bringForward(); },
                 .quit = [] { QCoreApplication::quit(); }}) {
    window_.setContent(screens_.windowContent());
    panel_.setContent(screens_.panelContent());
    menuBarExtra_.emplace(screens_.menuBar, desktop_.statusItem, panel_);
    connectWindows();
}

CairnfieldApp::~CairnfieldApp() {
    panel_.close();
    window_.release();
}

void CairnfieldApp::connectWindows() {
    QObject::connect(&window_, &MainWindow::closed, &window_, [this] { presence_.windowClosed(); });
    QObject::connect(&window_, &MainWindow::quitRequested, qGuiApp, &QCoreApplication::quit);
    QObject::connect(&panel_, &PanelWindow::quitRequested, qGuiApp, &QCoreApplication::quit);
    QObject::connect(&screens_.menuBar, &MenuBarViewModel::quitRequested, qGuiApp, &QCoreApplication::quit);
    QObject::connect(&quitGate_, &QuitGate::heldBack, &window_, [this] {
        screens_.root.showThatQuitWaits();
        window_.bringForward();
    });
    instance_.onActivate([this](const std::string& /*token*/) { window_.bringForward(); });
}

int CairnfieldApp::run(Launch launch) {
    desktop_.appearance.whenSettled(appearanceLimit, [this, launch] { presence_.begin(launch); });
    const int status = QCoreApplication::exec();
    instance_.onActivate({});
    application_.end();
    menuBarExtra_.reset();
    panel_.close();
    window_.release();
    QEventLoop loop;
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, &loop, [this, status] {
        if (model_.state().cleanupsUnderWay.get() > 0) return;
        defaults_.flushBlocking();
        leaveAtOnce(status);
    });
    limit.start(endLimit);
    const TaskHandle<> ending = spawn(machine_.mainThread, end(loop));
    // Whoever asks for the end once more ends the loop, not what is under way.
    while (!ending.done()) loop.exec();
    return status;
}

Task<> CairnfieldApp::end(QEventLoop& loop) {
    co_await presence_.end();
    started_.cancel();
    try {
        co_await started_.value();
    } catch (const Cancelled&) {
        Log::app().debug("The end came during the start");
    }
    co_await model_.stop();
    co_await desktop_.notificationCenter.stop();
    loop.quit();
}

}  // namespace cairnfield
