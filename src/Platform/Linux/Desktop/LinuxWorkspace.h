#pragma once
// Showing places in the desktop's file manager and terminal. Programs are found in fixed places, started
// without a shell and with the environment that we were started with, and live on when we end.

#include "Platform/Workspace.h"
#include "Shared/Environment/Environment.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class LinuxWorkspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// Where programs are looked for.
    [[nodiscard]] static std::vector<FilePath> standardPlaces();

    LinuxWorkspace(const QDBusConnection& bus, std::vector<FilePath> places, Environment atStart);

    /// Asks the file manager on the bus, which the bus starts where it can. Where none answers, or it fails,
    /// the folder is opened.
    void revealAll(const std::vector<FilePath>& items, Told told) override;
    std::optional<std::string> openTerminal(const FilePath& directory) override;

    /// The leave to bring a window forward, for what is shown next; it holds once. An empty one takes it
    /// back.
    void useActivationToken(std::string token) { activationToken_ = std::move(token); }

private:
    void openFolderUnlessShown(const QDBusMessage& answer, const FilePath& folder, const std::string& token,
                               const Told& told) const;
    [[nodiscard]] std::optional<std::string> openFolder(const FilePath& folder,
                                                        const std::string& token) const;
    [[nodiscard]] std::optional<std::string> start(const FilePath& program,
                                                   const std::vector<std::string>& arguments,
                                                   const std::optional<FilePath>& workingDirectory,
                                                   const std::string& token) const;

    QDBusConnection bus_;
    const std::vector<FilePath> places_;
    const Environment atStart_;
    std::string activationToken_;  ///< empty for none
};

}  // namespace cairnfield
