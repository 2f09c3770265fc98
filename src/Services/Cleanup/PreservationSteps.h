#pragma once
// The steps that put a worktree's work onto a recovery branch and onto a remote, and the proof that it is
// there. Each is one or a few git commands; none forces anything, bypasses a hook or undoes an earlier one.
// Belongs to one run of the coordinator and runs on its caller's executor. Throws CairnfieldError; what was
// done until then stays.

#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Cleanup/CommittedPaths.h"
#include "Services/Cleanup/ReviewedHead.h"
#include "Services/Cleanup/Staging.h"
#include "Services/Git/GitCommandRunner.h"

namespace cairnfield {

class PreservationSteps {
public:
    /// `blocking`, for looking at files, and `plan` outlive the steps.
    PreservationSteps(const GitCommandRunner& git, Executor& blocking, const CleanupPlan& plan)
        : git_(git),
          plan_(plan),
          reviewedHead_(git, blocking, plan.worktree),
          staging_(git, blocking, plan),
          committedPaths_(git, blocking, plan.worktree.path) {}

    /// The worktree stands on the recovery branch afterwards, which holds the reviewed commit. A branch that
    /// exists already is gone to, not reset, and not gone to when it does not hold that commit.
    [[nodiscard]] Task<> createBranch();
    /// Gives the paths that the commit has to cover.
    [[nodiscard]] Task<std::vector<std::string>> stage(std::vector<std::string> paths);
    [[nodiscard]] Task<> commit();
    /// Refuses when one of the paths was left out of the commit at `head` and is out of git's sight since.
    [[nodiscard]] Task<> assertCommitted(std::vector<std::string> paths, std::optional<std::string> head);
    /// What HEAD is at; absent when git does not say.
    [[nodiscard]] Task<std::optional<std::string>> head();
    /// A remote branch that exists is never overwritten, and one that holds the work already is left alone.
    [[nodiscard]] Task<> push();

    /// The proof: the server itself names the branch, at the expected commit. Asked from `directory`, since
    /// the worktree may be gone. Without an expected commit the branch's presence must do. Gives the commit
    /// that the server named.
    [[nodiscard]] Task<std::optional<std::string>> verifyRemote(std::optional<std::string> expected,
                                                                FilePath directory);

private:
    [[nodiscard]] Task<> goToBranch();
    [[nodiscard]] Task<std::optional<std::string>> remoteSHA(std::string remote, FilePath directory);

    GitCommandRunner git_;
    const CleanupPlan& plan_;
    ReviewedHead reviewedHead_;
    Staging staging_;
    CommittedPaths committedPaths_;
};

}  // namespace cairnfield
