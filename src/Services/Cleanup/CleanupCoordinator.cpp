#include "Services/Cleanup/CleanupCoordinator.h"

#include "Services/Cleanup/ChosenFiles.h"
#include "Services/Cleanup/EarlierRecovery.h"
#include "Services/Cleanup/PullRequestText.h"
#include "Services/Cleanup/RemovalSteps.h"
#include "Services/Git/WorktreeIdentity.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

namespace {

constexpr const char* busy = "Another cleanup is already running for this repository.";
constexpr const char* refusedWithoutWords = "Preflight failed.";

std::string countOf(std::size_t files) {
    return std::to_string(files) + " file(s)";
}

}  // namespace

/// Keeps other cleanups out of a repository for as long as it lives. Inside the actor only.
class CleanupCoordinator::ActiveRepository {
public:
    ActiveRepository(CleanupCoordinator& coordinator, const FilePath& key)
        : coordinator_(coordinator), key_(key) {}
    ~ActiveRepository() { coordinator_.activeRepositories_.erase(key_); }
    ActiveRepository(const ActiveRepository&) = delete;
    ActiveRepository& operator=(const ActiveRepository&) = delete;

private:
    CleanupCoordinator& coordinator_;
    const FilePath key_;
};

CleanupCoordinator::CleanupCoordinator(const Surroundings& surroundings, const GitCommandRunner& git,
                                       GitHubServicing& github, RecoveryVaultServicing& vault,
                                       CleanupReceiptStore& receipts, WorktreeInspecting& inspector)
    : Actor(surroundings.pool),
      blocking_(surroundings.blocking),
      clock_(surroundings.clock),
      git_(git),
      github_(github),
      vault_(vault),
      receipts_(receipts),
      look_(git, surroundings.blocking, surroundings.volumes, surroundings.supportDirectory),
      preflight_(git, github, inspector, look_) {}

void CleanupCoordinator::Run::tell(CleanupStage stage, std::optional<std::string> detail) const {
    if (progress) progress(CleanupProgress{stage, std::move(detail)});
}

Task<CleanupPreflightReport> CleanupCoordinator::preflight(Worktree worktree, bool requiresRemote) {
    CleanupPreflightReport report = co_await preflight_.report(std::move(worktree), requiresRemote);
    co_return report;
}

Task<CleanupReceipt> CleanupCoordinator::execute(CleanupPlan plan, ProgressReport progress) {
    return runToItsEnd(std::move(plan), std::move(progress)).shielded();
}

std::string CleanupCoordinator::pullRequestBody(const CleanupPlan& plan, const std::string& base,
                                                const std::optional<std::string>& preservedSHA, Date now) {
    return PullRequestText::body(plan, base, preservedSHA, now);
}

Task<CleanupReceipt> CleanupCoordinator::runToItsEnd(CleanupPlan plan, ProgressReport progress) {
    const FilePath key = plan.worktree.repositoryRoot.standardized();
    if (!activeRepositories_.insert(key).second)
        co_return ReceiptWriting::stopped(plan, {}, busy, clock_.now());
    const ActiveRepository activeRepository(*this, key);

    Run run{plan, progress, {}, {}, {}};
    run.tell(CleanupStage::preflight);
    CleanupPreflightReport report = co_await preflight_.report(plan.worktree, plan.requiresPreservation());
    run.report = std::move(report);
    if (!run.report.passed || !run.report.fingerprint) {
        const std::vector<std::string>& failures = run.report.failures;
        co_return ReceiptWriting::stopped(plan, {}, failures.empty() ? refusedWithoutWords : failures.front(),
                                          clock_.now());
    }

    // What is not known cannot be kept.
    if (plan.nested.failure) co_return ReceiptWriting::stopped(plan, {}, *plan.nested.failure, clock_.now());

    std::optional<std::string> failure;
    try {
        co_await carryOut(run);
    } catch (...) {
        failure = describeCurrentException();
    }
    const CleanupReceipt receipt = failure
                                       ? ReceiptWriting::stopped(plan, run.reached, *failure, clock_.now())
                                       : ReceiptWriting::succeeded(plan, run.reached, clock_.now());
    co_await receipts_.append(receipt);
    run.tell(failure ? CleanupStage::failed : CleanupStage::completed, failure);
    if (failure) Log::cleanup().error("Cleanup failed: {}", visibleText(*failure));
    co_return receipt;
}

Task<> CleanupCoordinator::carryOut(Run& run) {
    PreservationSteps steps(git_, blocking_, run.plan);
    const bool preserves = run.plan.requiresPreservation();
    if (preserves) co_await preserve(run, steps);
    if (!run.plan.allFilesToArchive().empty()) co_await archiveLocalFiles(run);
    co_await removeWorktree(run);
    // The worktree is gone by now, so the question is asked from where the repository is.
    if (preserves)
        co_await steps.verifyRemote(run.reached.preservedCommitSHA, run.plan.worktree.repositoryRoot);
}

Task<> CleanupCoordinator::preserve(Run& run, PreservationSteps& steps) {
    const CleanupPlan& plan = run.plan;
    run.tell(CleanupStage::creatingRecoveryBranch, plan.recoveryBranch);
    const WorktreeFingerprint present = co_await preflight_.fingerprint(plan.worktree);
    // From here on git changes whatever repository the path leads to.
    if (present != run.report.fingerprint || !isStillTheReviewedWorktree(plan.worktree))
        throw CairnfieldError(CairnfieldError::WorktreeChangedAfterReview{plan.worktree.path.bytes()});
    co_await steps.createBranch();

    std::vector<std::string> paths = plan.trackedPathsToCommit;
    paths.insert(paths.end(), plan.untrackedPathsToCommit.begin(), plan.untrackedPathsToCommit.end());
    std::vector<std::string> toCommit;
    if (!paths.empty()) {
        run.tell(CleanupStage::staging, countOf(paths.size()));
        std::vector<std::string> staged = co_await steps.stage(std::move(paths));
        toCommit = std::move(staged);
        run.tell(CleanupStage::committing);
        co_await steps.commit();
    }
    std::optional<std::string> commit = co_await steps.head();
    run.reached.preservedCommitSHA = std::move(commit);
    run.reached.recoveryBranch = plan.recoveryBranch;
    co_await steps.assertCommitted(std::move(toCommit), run.reached.preservedCommitSHA);

    run.tell(CleanupStage::pushing, plan.remoteName);
    co_await steps.push();
    run.tell(CleanupStage::verifyingRemote);
    std::optional<std::string> named =
        co_await steps.verifyRemote(run.reached.preservedCommitSHA, plan.worktree.path);
    run.commitOnRemote = std::move(named);
    const std::optional<std::string> base = run.report.resolvedBaseBranch;
    if (plan.createPullRequest && base) co_await openPullRequest(run, *base);
}

Task<> CleanupCoordinator::openPullRequest(Run& run, std::string base) {
    const CleanupPlan& plan = run.plan;
    run.tell(CleanupStage::creatingPullRequest, base);
    std::optional<std::string> host;
    if (plan.remoteName) host = PreflightJudgement::pushHost(plan.worktree, *plan.remoteName);
    const std::string body = pullRequestBody(plan, base, run.reached.preservedCommitSHA, clock_.now());
    try {
        PullRequestInfo created = co_await github_.createDraftPullRequest(
            base, plan.recoveryBranch, PullRequestText::title(plan), body, plan.worktree.path, host);
        run.reached.pullRequest = std::move(created);
    } catch (const CairnfieldError& failure) {
        Log::github().error("Pull request creation failed: {}", visibleText(failure.errorDescription()));
        throw;
    }
}

Task<> CleanupCoordinator::archiveLocalFiles(Run& run) {
    const CleanupPlan& plan = run.plan;
    const std::vector<IgnoredEntry> files = plan.allFilesToArchive();
    run.tell(CleanupStage::archivingLocalFiles, countOf(files.size()));
    std::vector<RecoveryVaultEntry> entries = co_await vault_.archive(
        files, plan.worktree, plan.worktree.repositoryName, UUID::make(), plan.retentionDays);
    for (const RecoveryVaultEntry& entry : entries) run.reached.vaultPaths.push_back(entry.storedPath);
    run.archived = std::move(entries);
}

Task<> CleanupCoordinator::removeWorktree(Run& run) {
    RemovalSteps steps(git_, preflight_, run.plan);
    run.tell(CleanupStage::removingWorktree);
    if (EarlierRecovery::needsProof(run.plan)) co_await EarlierRecovery::prove(git_, run.plan);
    std::vector<std::string> untracked = co_await steps.assertUnchangedExceptPreservation();
    co_await lookOnceMore(run, untracked);
    // The look leaves these to git, which removes no worktree that holds one, as long as it reports them.
    if (!untracked.empty()) co_await steps.assertStillReported(std::move(untracked));
    co_await steps.remove();
    run.tell(CleanupStage::verifyingDeletion);
    co_await steps.verify();
}

Task<> CleanupCoordinator::lookOnceMore(Run& run, std::vector<std::string> untracked) {
    const Worktree& reviewed = run.plan.worktree;
    const ExpectedHead head = run.plan.requiresPreservation() ? ExpectedHead::preserved(run.commitOnRemote)
                                                              : ExpectedHead::reviewed(reviewed);
    FilesSeen seen{std::move(untracked), std::nullopt};
    if (run.plan.nested.wereLookedFor()) seen.sensitive = run.plan.nested.seen;
    const std::optional<RemovalRefusal> refusal =
        co_await look_.atTheEnd({reviewed, head, run.archived, {}, std::move(seen)});
    if (refusal) throw refusal->asError(reviewed.path);
    const auto look = [&run] {
        return refusalForUnarchived(run.plan.allFilesToArchive(), run.archived, run.plan.worktree.path);
    };
    const std::optional<CairnfieldError> unarchived = co_await runOn(blocking_, look);
    if (unarchived) throw CairnfieldError(*unarchived);
}

}  // namespace cairnfield
