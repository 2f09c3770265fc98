#pragma once
// Carries a CleanupPlan out: preserve the work on a remote, prove that it is there, archive local files, let
// git remove the worktree, verify, write a receipt. The one place that has a worktree deleted, and nothing is
// deleted before the work is proven to exist elsewhere. No step forces anything and none is undone: at the
// first failure everything stays as it then is, and the receipt says so.
//
// An actor. One cleanup of a repository at a time; a second one is refused, not queued. Those of different
// repositories interleave. `execute` cannot be stopped: cancelling the task that waits for it does nothing.
// It never throws.

#include "Persistence/CleanupReceiptStore.h"
#include "Services/Cleanup/CleanupPreflight.h"
#include "Services/Cleanup/PreservationSteps.h"
#include "Services/Cleanup/ReceiptWriting.h"
#include "Services/Cleanup/RecoveryVaultServicing.h"
#include "Services/Cleanup/RemovalLook.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Time/Date.h"

#include <functional>
#include <set>

namespace cairnfield {

class CleanupCoordinator final : public Actor {
public:
    /// Called on a thread of the pool, without waiting for it: it hands over to where the report is shown.
    /// Must not throw.
    using ProgressReport = std::function<void(CleanupProgress)>;

    /// Where it works; all of it outlives the coordinator.
    struct Surroundings {
        Executor& pool;
        Executor& blocking;  ///< for looking at the tree
        const VolumeInformation& volumes;
        const WallClock& clock;     ///< dates receipts
        FilePath supportDirectory;  ///< ours: what must never lie in a worktree that goes
    };

    /// The services outlive the coordinator.
    CleanupCoordinator(const Surroundings& surroundings, const GitCommandRunner& git, GitHubServicing& github,
                       RecoveryVaultServicing& vault, CleanupReceiptStore& receipts,
                       WorktreeInspecting& inspector);

    /// Read-only. `requiresRemote` is the plan's requiresPreservation().
    Task<CleanupPreflightReport> preflight(Worktree worktree, bool requiresRemote);

    /// Every failure comes back inside the receipt, which is stored unless nothing was tried.
    Task<CleanupReceipt> execute(CleanupPlan plan, ProgressReport progress);

    /// What a draft pull request says.
    [[nodiscard]] static std::string pullRequestBody(const CleanupPlan& plan, const std::string& base,
                                                     const std::optional<std::string>& preservedSHA,
                                                     Date now);

private:
    /// One call of `execute`; lives in its frame.
    struct Run {
        const CleanupPlan& plan;
        const ProgressReport& progress;
        CleanupPreflightReport report;
        ReceiptWriting::Progress reached;
        std::optional<std::string> commitOnRemote;  ///< as the remote named it
        std::vector<RecoveryVaultEntry> archived;

        void tell(CleanupStage stage, std::optional<std::string> detail = std::nullopt) const;
    };
    class ActiveRepository;

    Task<CleanupReceipt> runToItsEnd(CleanupPlan plan, ProgressReport progress);
    Task<> carryOut(Run& run);
    Task<> preserve(Run& run, PreservationSteps& steps);
    Task<> openPullRequest(Run& run, std::string base);
    Task<> archiveLocalFiles(Run& run);
    Task<> removeWorktree(Run& run);
    Task<> lookOnceMore(Run& run, std::vector<std::string> untracked);

    Executor& blocking_;
    const WallClock& clock_;
    const GitCommandRunner git_;
    GitHubServicing& github_;
    RecoveryVaultServicing& vault_;
    CleanupReceiptStore& receipts_;
    const RemovalLook look_;
    CleanupPreflight preflight_;
    std::set<FilePath> activeRepositories_;  ///< standardized roots with a cleanup under way
};

}  // namespace cairnfield
