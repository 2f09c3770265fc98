#pragma once
// Showing a place of the file system in the desktop's other programs. Main thread only. Starting a program
// can fail for many reasons that the desktop does not tell; what it does tell is returned in words for the
// person.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens the file manager with the items selected, or the folder that holds them all where selecting is
    /// not to be had. Returns why not. Of no items there is nothing to show.
    virtual std::optional<std::string> revealAll(const std::vector<FilePath>& items) = 0;
    std::optional<std::string> reveal(const FilePath& item) { return revealAll({item}); }

    /// Opens a terminal in the directory. Returns why not.
    virtual std::optional<std::string> openTerminal(const FilePath& directory) = 0;
};

}  // namespace cairnfield
