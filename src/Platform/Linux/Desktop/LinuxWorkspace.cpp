#include "Platform/Linux/Desktop/LinuxWorkspace.h"

#include "Platform/Linux/Desktop/DetachedProgram.h"
#include "Platform/Linux/Desktop/FileURI.h"
#include "Shared/Paths/PathContainment.h"

#include <QDBusPendingCallWatcher>

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

}  // namespace

std::vector<FilePath> LinuxWorkspace::standardPlaces() {
    return {FilePath("/usr/local/bin"), FilePath("/usr/bin"), FilePath("/bin"), FilePath("/snap/bin")};
}

LinuxWorkspace::LinuxWorkspace(const QDBusConnection& bus, std::vector<FilePath> places, Environment atStart)
    : bus_(bus), places_(std::move(places)), atStart_(std::move(atStart)) {}

void LinuxWorkspace::revealAll(const std::vector<FilePath>& items, Told told) {
    if (items.empty()) return told(std::nullopt);
    const std::string token = std::exchange(activationToken_, {});
    const FilePath folder = folderOfAll(items);
    if (!bus_.isConnected()) return told(openFolder(folder, token));
    QStringList addresses;
    for (const FilePath& item : items) addresses << QString::fromStdString(fileURI(item));
    QDBusMessage question =
        QDBusMessage::createMethodCall(fileManager, QStringLiteral("/org/freedesktop/FileManager1"),
                                       fileManager, QStringLiteral("ShowItems"));
    question << addresses << QString::fromStdString(token);
    auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, folder, token, told = std::move(told)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                openFolderUnlessShown(finished->reply(), folder, token, told);
            });
}

void LinuxWorkspace::openFolderUnlessShown(const QDBusMessage& answer, const FilePath& folder,
                                           const std::string& token, const Told& told) const {
    const bool isShown = answer.type() == QDBusMessage::ReplyMessage;
    told(isShown ? std::nullopt : openFolder(folder, token));
}

std::optional<std::string> LinuxWorkspace::openFolder(const FilePath& folder,
                                                      const std::string& token) const {
    if (const auto opener = findProgram({"xdg-open"}, places_))
        return start(*opener, {fileURI(folder)}, std::nullopt, token);
    if (const auto opener = findProgram({"gio"}, places_))
        return start(*opener, {"open", fileURI(folder)}, std::nullopt, token);
    return "No file manager was found.";
}

std::optional<std::string> LinuxWorkspace::openTerminal(const FilePath& directory) {
    const std::string token = std::exchange(activationToken_, {});
    const auto terminal = findProgram(terminals, places_);
    if (!terminal) return "No terminal was found.";
    return start(*terminal, {}, directory, token);
}

std::optional<std::string> LinuxWorkspace::start(const FilePath& program,
                                                 const std::vector<std::string>& arguments,
                                                 const std::optional<FilePath>& workingDirectory,
                                                 const std::string& token) const {
    try {
        startDetached(program, arguments, workingDirectory, environmentForPerson(atStart_, token));
        return std::nullopt;
    } catch (const std::system_error& error) {
        return program.display() + " could not be started: " + error.code().message();
    }
}

}  // namespace cairnfield
