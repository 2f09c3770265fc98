#pragma once
// Showing a place of the file system in the desktop's other programs. Main thread only. Starting a program
// can fail for many reasons that the desktop does not tell; what it does tell is returned in words for the
// person.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>

namespace cairnfield {

class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens the file manager with the item selected, or its folder where selecting is not to be had. Returns
    /// why not.
    virtual std::optional<std::string> reveal(const FilePath& item) = 0;

    /// Opens a terminal in the directory. Returns why not.
    virtual std::optional<std::string> openTerminal(const FilePath& directory) = 0;
};

}  // namespace cairnfield
