#pragma once
// Gathers what decides whether a cleanup may begin, and what exactly the worktree looks like: through git and
// the inspector, read-only, with the judgement made by pure functions. Keeps no state and belongs to the
// coordinator; runs on its caller's executor. Nothing here throws: every problem becomes a report.

#include "Services/Cleanup/PreflightJudgement.h"
#include "Services/Cleanup/RemovalLook.h"
#include "Services/Git/GitCommandRunner.h"
#include "Services/Git/WorktreeInspecting.h"
#include "Services/GitHub/GitHubServicing.h"

namespace cairnfield {

class CleanupPreflight {
public:
    /// `github` and `inspector` outlive every question.
    CleanupPreflight(GitCommandRunner git, GitHubServicing& github, WorktreeInspecting& inspector,
                     RemovalLook look)
        : git_(std::move(git)), github_(github), inspector_(inspector), look_(std::move(look)) {}

    /// What would stop the removal at its end stops the cleanup here, before anything is pushed; it comes
    /// after all that git and the remote can say.
    [[nodiscard]] Task<CleanupPreflightReport> report(Worktree snapshot, bool requiresRemote);

    /// Of the record's head, branch and ignored names over the state on disk at this moment. A status that
    /// cannot be had counts as empty.
    [[nodiscard]] Task<WorktreeFingerprint> fingerprint(Worktree worktree);

    /// Git's list, or none when it cannot be had.
    [[nodiscard]] Task<std::vector<GitWorktreeEntry>> listed(FilePath repositoryRoot);

private:
    struct RemoteAnswer {
        std::optional<std::string> objection;
        std::optional<std::string> baseBranch;
    };
    Task<RemoteAnswer> askRemote(Worktree snapshot);

    GitCommandRunner git_;
    GitHubServicing& github_;
    WorktreeInspecting& inspector_;
    const RemovalLook look_;
};

}  // namespace cairnfield
