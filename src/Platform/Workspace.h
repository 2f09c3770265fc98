#pragma once
// Showing a place of the file system in the desktop's other programs. Main thread only, and never blocking
// for longer than it takes to start one. That can fail for many reasons that the desktop does not tell; what
// it does tell comes back in words for the person.

#include "Shared/Paths/FilePath.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class Workspace {
public:
    /// Called once, at once or later: why it could not be shown, or absent.
    using Told = std::function<void(const std::optional<std::string>& problem)>;

    virtual ~Workspace() = default;

    /// Opens the file manager with the items selected, or the folder that holds them all where selecting is
    /// not to be had. Of no items there is nothing to show.
    virtual void revealAll(const std::vector<FilePath>& items, Told told) = 0;
    void reveal(const FilePath& item, Told told) { revealAll({item}, std::move(told)); }

    /// Opens a terminal in the directory. Returns why not.
    virtual std::optional<std::string> openTerminal(const FilePath& directory) = 0;
};

}  // namespace cairnfield
