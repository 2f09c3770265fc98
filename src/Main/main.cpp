// The program's entry: what has to be settled before the first thread and the first file, then the
// application.

#include "Main/CairnfieldApp.h"
#include "Main/TerminationSignals.h"
#include "Platform/Linux/DescriptorLimit.h"
#include "Shared/Logging/Log.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(Cairnfield_ComponentsPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_RootPlugin)
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

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    cairnfield::raiseDescriptorLimit();
    readFromNothing();
    try {
        cairnfield::TerminationSignals terminationSignals;
        QGuiApplication application(argc, argv);
        QGuiApplication::setApplicationName(QStringLiteral("Cairnfield"));
        QGuiApplication::setApplicationDisplayName(QStringLiteral("Cairnfield"));
        QGuiApplication::setDesktopFileName(QStringLiteral("com.cairnfield.app"));
        QGuiApplication::setQuitOnLastWindowClosed(false);
        QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/cairnfield.svg")));
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        cairnfield::CairnfieldApp app(cairnfield::BaseDirectories::current());
        QObject::connect(&terminationSignals, &cairnfield::TerminationSignals::received, &application,
                         &QCoreApplication::quit);
        terminationSignals.listen();
        return app.run();
    } catch (const std::exception& error) {
        cairnfield::Log::app().critical("The program cannot start: {}", error.what());
        return EXIT_FAILURE;
    }
}
