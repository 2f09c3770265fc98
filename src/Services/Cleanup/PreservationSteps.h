#pragma once
// The steps that put a worktree's work onto a recovery branch and onto a remote, and the proof that it is
// there. Each is one or a few git commands; none forces anything, bypasses a hook or undoes an earlier one.
// Belongs to one run of the coordinator and runs on its caller's executor. Throws CairnfieldError; what was
// done until then stays.

#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Git/GitCommandRunner.h"

namespace cairnfield {

class PreservationSteps {
public:
    /// `plan` outlives the steps.
    PreservationSteps(GitCommandRunner git, const CleanupPlan& plan) : git_(std::move(git)), plan_(plan) {}

    /// The worktree stands on the recovery branch afterwards. One that exists already is gone to, not reset.
    [[nodiscard]] Task<> createBranch();
    [[nodiscard]] Task<> stage(std::vector<std::string> paths);
    [[nodiscard]] Task<> commit();
    /// What HEAD is at; absent when git does not say.
    [[nodiscard]] Task<std::optional<std::string>> head();
    /// A remote branch that exists is never overwritten, and one that holds the work already is left alone.
    [[nodiscard]] Task<> push();

    /// The proof: the server itself names the branch, at the expected commit. Asked from `directory`, since
    /// the worktree may be gone. Without an expected commit the branch's presence must do.
    [[nodiscard]] Task<> verifyRemote(std::optional<std::string> expected, FilePath directory);

private:
    [[nodiscard]] Task<std::optional<std::string>> remoteSHA(std::string remote, FilePath directory);

    GitCommandRunner git_;
    const CleanupPlan& plan_;
};

}  // namespace cairnfield
