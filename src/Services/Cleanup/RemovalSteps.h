#pragma once
// The last check through git, the removal and its verification. git alone removes anything, and is never told
// to force it. Belongs to one run of the coordinator and runs on its caller's executor. Throws
// CairnfieldError.

#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Cleanup/CleanupPreflight.h"

namespace cairnfield {

class RemovalSteps {
public:
    /// Everything outlives the steps.
    RemovalSteps(GitCommandRunner git, CleanupPreflight& preflight, const CleanupPlan& plan)
        : git_(std::move(git)), preflight_(preflight), plan_(plan) {}

    /// The worktree is still listed, free, and none of the plan's paths waits for a commit. Other changes are
    /// left to git, which refuses to remove them. Gives the paths that git reports as untracked.
    [[nodiscard]] Task<std::vector<std::string>> assertUnchangedExceptPreservation();
    /// git still reports each of these paths that is on disk, so that it will remove nothing.
    [[nodiscard]] Task<> assertStillReported(std::vector<std::string> untracked);
    [[nodiscard]] Task<> remove();
    [[nodiscard]] Task<> verify();

private:
    [[nodiscard]] Task<std::optional<GitWorktreeEntry>> entry();
    [[nodiscard]] Task<GitStatusSummary> status();

    GitCommandRunner git_;
    CleanupPreflight& preflight_;
    const CleanupPlan& plan_;
};

}  // namespace cairnfield
