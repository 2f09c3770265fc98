#pragma once
// Showing places in the desktop's file manager and terminal. Programs are found in fixed places, started
// without a shell, and live on when we end.

#include "Platform/Workspace.h"

#include <QDBusConnection>
#include <QObject>

#include <vector>

namespace cairnfield {

class LinuxWorkspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// Where programs are looked for.
    [[nodiscard]] static std::vector<FilePath> standardPlaces();

    LinuxWorkspace(const QDBusConnection& bus, std::vector<FilePath> places);

    /// Over the bus where a file manager serves it; when that fails later, the folder is opened and a failure
    /// of that is in the log.
    std::optional<std::string> revealAll(const std::vector<FilePath>& items) override;
    std::optional<std::string> openTerminal(const FilePath& directory) override;

private:
    [[nodiscard]] bool hasFileManagerOnBus() const;
    void askFileManager(const std::vector<FilePath>& items);
    [[nodiscard]] std::optional<std::string> openFolder(const FilePath& folder) const;

    QDBusConnection bus_;
    const std::vector<FilePath> places_;
};

}  // namespace cairnfield
