#include "Main/CairnfieldApp.h"

#include "Shared/Concurrency/Cancelled.h"

#include <QDBusConnection>
#include <QGuiApplication>

#include <cstdlib>

namespace cairnfield {

namespace {

/// So long the window waits for the desktop to say whether it is light or dark, rather than turn dark before
/// the person's eyes.
constexpr std::chrono::milliseconds appearanceLimit{150};

}  // namespace

CairnfieldApp::CairnfieldApp(const BaseDirectories& directories)
    : appearance_(QDBusConnection::sessionBus()),
      workspace_(QDBusConnection::sessionBus(), LinuxWorkspace::standardPlaces()),
      support_(directories.dataHome, directories.configHome),
      defaults_(support_.settingsFile()),
      model_(settings_, {.mainThread = mainThread_,
                         .pool = pool_,
                         .blocking = blocking_,
                         .walking = walking_,
                         .continuousClock = continuousClock_,
                         .wallClock = wallClock_,
                         .processRunner = processRunner_,
                         .treeMeasurer = treeMeasurer_,
                         .authorization = authorization_,
                         .support = support_}),
      started_(spawn(mainThread_, model_.start())),
      watchedFoldersViewModel_(model_, workspace_, wallClock_, directories.home),
      window_(windowContent(), defaults_) {
    QObject::connect(&window_, &MainWindow::closed, qGuiApp, &QCoreApplication::quit);
    QObject::connect(&window_, &MainWindow::quitRequested, qGuiApp, &QCoreApplication::quit);
}

CairnfieldApp::~CairnfieldApp() = default;

int CairnfieldApp::run() {
    appearance_.whenSettled(appearanceLimit, [this] {
        if (!window_.show()) QCoreApplication::exit(EXIT_FAILURE);
    });
    const int status = QCoreApplication::exec();
    window_.release();
    QEventLoop loop;
    const TaskHandle<> ending = spawn(mainThread_, end(loop));
    loop.exec();
    return status;
}

QVariantMap CairnfieldApp::windowContent() {
    return {{QStringLiteral("viewModel"), QVariant::fromValue(&rootViewModel_)},
            {QStringLiteral("appearance"), QVariant::fromValue(&appearanceViewModel_)},
            {QStringLiteral("worktrees"), QVariant::fromValue(&worktreesViewModel_)},
            {QStringLiteral("watchedFolders"), QVariant::fromValue(&watchedFoldersViewModel_)}};
}

Task<> CairnfieldApp::end(QEventLoop& loop) {
    started_.cancel();
    try {
        co_await started_.value();
    } catch (const Cancelled&) {
    }
    co_await model_.stop();
    loop.quit();
}

}  // namespace cairnfield
