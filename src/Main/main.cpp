// The program's entry: what has to be settled before the first thread and the first file, then the
// application.

#include "Main/ActivationToken.h"
#include "Main/CairnfieldApp.h"
#include "Main/TerminationSignals.h"
#include "Platform/Linux/DescriptorLimit.h"
#include "Platform/Linux/Desktop/BusSingleInstance.h"
#include "Platform/Linux/ProcessSignals.h"
#include "Shared/Environment/Environment.h"
#include "Shared/Logging/Log.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QIcon>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(Cairnfield_AppearancePlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_CleanupReviewPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_ComponentsPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_HistoryPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_ItemListsPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_MenuBarPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_PreferencesPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_RecoveryVaultPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_RootPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_SavePanelPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_WatchedFoldersPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_WorktreesPlugin)

namespace {

/// Nothing that we start may take what somebody types into the terminal that we were started from.
void readFromNothing() {
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing < 0) return;
    ::dup2(nothing, STDIN_FILENO);
    if (nothing != STDIN_FILENO) ::close(nothing);
}

/// The argument that the entry in the desktop's autostart folder gives.
cairnfield::Launch launchKind() {
    return QCoreApplication::arguments().contains(QLatin1String("--at-login")) ? cairnfield::Launch::atLogin
                                                                               : cairnfield::Launch::byPerson;
}

int runApplication(const std::string& activationToken) {
    const cairnfield::BaseDirectories directories = cairnfield::BaseDirectories::current();
    const cairnfield::ApplicationSupport support(directories.dataHome, directories.configHome);
    cairnfield::BusSingleInstance instance(QDBusConnection::sessionBus(),
                                           support.directory().appending("instance.lock"));
    switch (instance.claim(activationToken)) {
        case cairnfield::InstanceClaim::wasHandedOver:
            return EXIT_SUCCESS;
        case cairnfield::InstanceClaim::isElsewhere:
            cairnfield::Log::app().critical(
                "Cairnfield runs already for this user and cannot be reached from here. Quit it first: two "
                "at "
                "a time would write the same files.");
            return EXIT_FAILURE;
        case cairnfield::InstanceClaim::isFirst:
            break;
    }
    cairnfield::CairnfieldApp app(directories, instance);
    return app.run(launchKind());
}

}  // namespace

int main(int argc, char** argv) {
    const cairnfield::Environment& environment = cairnfield::environmentAtStart();
    cairnfield::settleSignals();
    cairnfield::raiseDescriptorLimit();
    readFromNothing();
    const std::string activationToken = cairnfield::activationTokenIn(environment);
    try {
        cairnfield::TerminationSignals terminationSignals;
        QGuiApplication application(argc, argv);
        QGuiApplication::setApplicationName(QStringLiteral("Cairnfield"));
        QGuiApplication::setApplicationDisplayName(QStringLiteral("Cairnfield"));
        QGuiApplication::setDesktopFileName(QStringLiteral("com.cairnfield.app"));
        QGuiApplication::setQuitOnLastWindowClosed(false);
        QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/cairnfield.svg")));
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        QObject::connect(&terminationSignals, &cairnfield::TerminationSignals::received, &application,
                         &QCoreApplication::quit);
        terminationSignals.listen();
        return runApplication(activationToken);
    } catch (const std::exception& error) {
        cairnfield::Log::app().critical("The program cannot start: {}", error.what());
        return EXIT_FAILURE;
    }
}
