#pragma once
// Whether the commit took what it was meant to take. A hook may take paths out of it again and have git
// ignore them; they would be in no commit, and a removal would take them without a word. Read-only.

#include "Services/Git/GitCommandRunner.h"
#include "Shared/Concurrency/Executor.h"

namespace cairnfield {

class CommittedPaths {
public:
    /// `blocking` outlives every question.
    CommittedPaths(GitCommandRunner git, Executor& blocking, FilePath worktree)
        : git_(std::move(git)), blocking_(blocking), worktree_(std::move(worktree)) {}

    /// Asked after the commit, of the paths that it was to cover; `head` is what HEAD is at since, as far as
    /// it is known. Throws CairnfieldError::CommandFailed, with a name, when one of them is on disk and is
    /// neither in the index nor seen by git as changed or untracked. What the index holds is in the commit or
    /// is a change that git sees, and a change keeps the worktree from being removed. Git is asked only about
    /// paths that are missing in the index.
    [[nodiscard]] Task<> assertCovered(std::vector<std::string> paths, std::optional<std::string> head);

private:
    [[nodiscard]] Task<> assertSeen(std::vector<std::string> paths);

    GitCommandRunner git_;
    Executor& blocking_;
    const FilePath worktree_;
};

}  // namespace cairnfield
