#pragma once
// What git keeps about a linked worktree, read from its files without git. Blocking, any thread. Throws
// std::system_error for what is there and cannot be read.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// All links resolved; absent when nothing is there.
[[nodiscard]] std::optional<FilePath> resolvedPath(const FilePath& path);

struct WorktreeGitFiles {
    FilePath own;     ///< the worktree's own Git directory
    FilePath common;  ///< the repository's; the same one in a main checkout
};

/// Where the ".git" of a checkout leads, be it a directory, a file or a link; absent when it leads nowhere.
/// Nothing is looked for above the checkout, as git would.
[[nodiscard]] std::optional<WorktreeGitFiles> gitDirectoriesOf(const FilePath& checkout);

/// The Git file that a worktree's own Git directory names: where git takes the worktree to be.
[[nodiscard]] std::optional<FilePath> gitFileNamedBy(const FilePath& ownGitDirectory);

/// Absent unless the path is a folder, not a link, whose Git file leads to a Git directory that leads back.
[[nodiscard]] std::optional<WorktreeGitFiles> gitFilesOf(const FilePath& worktree);

struct HeadOnDisk {
    enum class Form {
        commit,
        unborn,
        unreadable,
        keptElsewhere,  ///< in a store of references that is not read here
    };

    Form form = Form::unreadable;
    std::string commit;
    bool goesWithWorktree = false;  ///< it names a reference that this worktree has for itself
};

/// Whether the repository has its references in a store that is not read here.
[[nodiscard]] bool keepsReferencesElsewhere(const WorktreeGitFiles& files);
/// Whether each worktree has a reference of that name for itself.
[[nodiscard]] bool belongsToOneWorktree(std::string_view reference);

/// The commit that HEAD, or the branch that it names, is at.
[[nodiscard]] HeadOnDisk headOnDisk(const WorktreeGitFiles& files);

/// The other worktrees of the repository, the main one not among them.
[[nodiscard]] std::vector<FilePath> otherWorktrees(const WorktreeGitFiles& files);

/// Where the repository has objects besides its own.
[[nodiscard]] std::vector<FilePath> alternateObjects(const WorktreeGitFiles& files);

}  // namespace cairnfield
