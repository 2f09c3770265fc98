#pragma once
// Whether what a cleanup stands on still holds the commit that the worktree was at when it was reviewed. A
// branch of the recovery branch's name may be there already, made in the same second or by somebody else;
// going to it would leave a detached HEAD's commits to nobody. Read-only. Belongs to one run of the
// coordinator and runs on its caller's executor. Throws CairnfieldError; a review of an unborn branch is held
// by everything.

#include "Models/Worktree.h"
#include "Services/Git/GitCommandRunner.h"
#include "Shared/Concurrency/Executor.h"

namespace cairnfield {

class ReviewedHead {
public:
    /// `blocking` and `reviewed` outlive every question.
    ReviewedHead(GitCommandRunner git, Executor& blocking, const Worktree& reviewed)
        : git_(std::move(git)), blocking_(blocking), reviewed_(reviewed) {}

    /// Throws unless the local branch, which exists, is at the reviewed commit or holds it.
    [[nodiscard]] Task<> assertHeldBy(std::string branch);

    /// Throws unless HEAD is at the reviewed commit or holds it. HEAD is read from its files, and git is
    /// asked only where these do not tell. `branch` is what HEAD was put on, for the words alone.
    [[nodiscard]] Task<> assertHeldByHead(std::string branch);

private:
    [[nodiscard]] Task<> assertContained(std::string revision, std::string branch);

    GitCommandRunner git_;
    Executor& blocking_;
    const Worktree& reviewed_;
};

}  // namespace cairnfield
