#pragma once
// Where git and gh are: the person's choice, else a short list of well-known places. PATH is never asked,
// since a program started by the desktop knows little of the person's shell. A plain value; every call
// searches anew and blocks.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

class ExecutableLocator {
public:
    /// An override that names no executable file is passed over in silence. The well-known places are looked
    /// for under `root`, so that tests can furnish them.
    ExecutableLocator(std::optional<std::string> gitOverride, std::optional<std::string> gitHubCLIOverride,
                      FilePath root = FilePath("/"));

    /// Throws CairnfieldError::GitNotInstalled.
    [[nodiscard]] FilePath locateGit() const;
    /// Throws CairnfieldError::GitHubCLINotInstalled.
    [[nodiscard]] FilePath locateGitHubCLI() const;

private:
    [[nodiscard]] std::optional<FilePath> xcrunFind(std::string_view name) const;

    std::optional<std::string> gitOverride_;
    std::optional<std::string> gitHubCLIOverride_;
    FilePath root_;
};

}  // namespace cairnfield
