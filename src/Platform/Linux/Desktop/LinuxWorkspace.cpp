#include "Platform/Linux/Desktop/LinuxWorkspace.h"

#include "Platform/Linux/Desktop/DetachedProgram.h"
#include "Platform/Linux/Desktop/FileURI.h"
#include "Shared/Logging/Log.h"
#include "Shared/Paths/PathContainment.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <system_error>
#include <utility>

namespace cairnfield {

namespace {

const QString fileManager = QStringLiteral("org.freedesktop.FileManager1");

/// The desktop's choice, the distribution's choice, then what is common.
const std::vector<std::string> terminals{"xdg-terminal-exec",
                                         "x-terminal-emulator",
                                         "ptyxis",
                                         "kgx",
                                         "gnome-terminal",
                                         "konsole",
                                         "xfce4-terminal",
                                         "mate-terminal",
                                         "qterminal",
                                         "lxterminal",
                                         "tilix",
                                         "kitty",
                                         "alacritty",
                                         "foot",
                                         "wezterm",
                                         "xterm"};

/// The deepest folder that all of them lie in.
FilePath folderOfAll(const std::vector<FilePath>& items) {
    FilePath folder = items.front().standardized().parent();
    for (const FilePath& item : items) {
        while (!isAtOrBelow(item.standardized(), folder) && folder.parent() != folder)
            folder = folder.parent();
    }
    return folder;
}

std::optional<std::string> started(const FilePath& program, const std::vector<std::string>& arguments,
                                   const std::optional<FilePath>& workingDirectory) {
    try {
        startDetached(program, arguments, workingDirectory);
        return std::nullopt;
    } catch (const std::system_error& error) {
        return program.display() + " could not be started: " + error.code().message();
    }
}

}  // namespace

std::vector<FilePath> LinuxWorkspace::standardPlaces() {
    return {FilePath("/usr/local/bin"), FilePath("/usr/bin"), FilePath("/bin"), FilePath("/snap/bin")};
}

LinuxWorkspace::LinuxWorkspace(const QDBusConnection& bus, std::vector<FilePath> places)
    : bus_(bus), places_(std::move(places)) {}

std::optional<std::string> LinuxWorkspace::revealAll(const std::vector<FilePath>& items) {
    if (items.empty()) return std::nullopt;
    if (hasFileManagerOnBus()) {
        askFileManager(items);
        return std::nullopt;
    }
    return openFolder(folderOfAll(items));
}

bool LinuxWorkspace::hasFileManagerOnBus() const {
    if (!bus_.isConnected()) return false;
    QDBusConnectionInterface* const daemon = bus_.interface();
    return daemon->isServiceRegistered(fileManager) ||
           daemon->activatableServiceNames().value().contains(fileManager);
}

void LinuxWorkspace::askFileManager(const std::vector<FilePath>& items) {
    QStringList addresses;
    for (const FilePath& item : items) addresses << QString::fromStdString(fileURI(item));
    QDBusMessage question =
        QDBusMessage::createMethodCall(fileManager, QStringLiteral("/org/freedesktop/FileManager1"),
                                       fileManager, QStringLiteral("ShowItems"));
    question << addresses << QString();
    auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, folder = folderOfAll(items)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusPendingReply<> reply = *finished;
                if (!reply.isError()) return;
                if (const auto problem = openFolder(folder)) Log::app().error("{}", *problem);
            });
}

std::optional<std::string> LinuxWorkspace::openFolder(const FilePath& folder) const {
    if (const auto opener = findProgram({"xdg-open"}, places_))
        return started(*opener, {fileURI(folder)}, std::nullopt);
    if (const auto opener = findProgram({"gio"}, places_))
        return started(*opener, {"open", fileURI(folder)}, std::nullopt);
    return "No file manager was found.";
}

std::optional<std::string> LinuxWorkspace::openTerminal(const FilePath& directory) {
    const auto terminal = findProgram(terminals, places_);
    if (!terminal) return "No terminal was found.";
    return started(*terminal, {}, directory);
}

}  // namespace cairnfield
