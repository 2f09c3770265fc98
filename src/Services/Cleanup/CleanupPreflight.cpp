#include "Services/Cleanup/CleanupPreflight.h"

#include "Services/Cleanup/RemoteName.h"
#include "Services/Git/FileFacts.h"
#include "Services/Git/WorktreeIdentity.h"

#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds statusLimit{30};
constexpr std::chrono::seconds remoteLimit{45};

}  // namespace

Task<std::vector<GitWorktreeEntry>> CleanupPreflight::listed(FilePath repositoryRoot) {
    try {
        std::vector<GitWorktreeEntry> entries = co_await inspector_.listWorktrees(std::move(repositoryRoot));
        co_return entries;
    } catch (const std::exception&) {
        // A worktree that is not known to be listed counts as not listed.
    }
    co_return {};
}

Task<CleanupPreflightReport> CleanupPreflight::report(Worktree snapshot, bool requiresRemote) {
    using namespace PreflightJudgement;
    const PathOnDisk path = nothingExistsAt(snapshot.path) ? PathOnDisk::missing : PathOnDisk::there;
    std::optional<std::string> objection = objectionToSnapshot(snapshot, path);
    if (objection) co_return CleanupPreflightReport::failed(*objection);

    const std::vector<GitWorktreeEntry> entries = co_await listed(snapshot.repositoryRoot);
    const std::optional<GitWorktreeEntry> entry = entryOf(snapshot, entries);
    objection = objectionToListing(snapshot, entry);
    if (objection) co_return CleanupPreflightReport::failed(*objection);

    objection = whyNotTheListedWorktree(*entry, snapshot.repositoryRoot);
    if (objection) co_return CleanupPreflightReport::failed(*objection);

    const WorktreeInspectionOptions options;
    const Worktree fresh = co_await inspector_.inspect(*entry, snapshot.repositoryRoot, options);
    objection = objectionToState(fresh);
    if (objection) co_return CleanupPreflightReport::failed(*objection);
    objection = reasonInVerdict(snapshot, fresh, requiresRemote);
    if (objection) co_return CleanupPreflightReport::failed(*objection);

    std::optional<std::string> baseBranch = snapshot.tracking.defaultBranch;
    if (requiresRemote) {
        const RemoteAnswer answer = co_await askRemote(snapshot);
        if (answer.objection) co_return CleanupPreflightReport::failed(*answer.objection);
        baseBranch = answer.baseBranch;
    }

    const std::optional<RemovalRefusal> refusal = co_await look_.beforehand(fresh, requiresRemote);
    if (refusal) co_return CleanupPreflightReport::failed(refusal->asSentence());

    CleanupPreflightReport report;
    report.passed = true;
    report.warnings = warningsAbout(fresh);
    report.remoteIsWritable = requiresRemote;
    report.resolvedBaseBranch = std::move(baseBranch);
    WorktreeFingerprint identity = co_await fingerprint(fresh);
    report.fingerprint = std::move(identity);
    co_return report;
}

Task<CleanupPreflight::RemoteAnswer> CleanupPreflight::askRemote(Worktree snapshot) {
    using namespace PreflightJudgement;
    const std::optional<std::string> remote = remoteName(snapshot);
    if (!remote) co_return RemoteAnswer{std::string(noRemote), {}};
    if (readsAsOption(*remote)) co_return RemoteAnswer{unreachable(*remote), {}};
    const GitArguments heads{"ls-remote", "--exit-code", "--heads", *remote};
    const bool isReachable = co_await git_.succeeds(heads, snapshot.path, remoteLimit);
    if (!isReachable) co_return RemoteAnswer{unreachable(*remote), {}};
    if (snapshot.tracking.defaultBranch) co_return RemoteAnswer{{}, snapshot.tracking.defaultBranch};

    const std::optional<std::string> host = pushHost(snapshot, *remote);
    if (!host) co_return RemoteAnswer{std::string(noBaseBranch), {}};
    std::optional<std::string> base = co_await github_.defaultBranch(snapshot.path, host);
    if (!base) co_return RemoteAnswer{std::string(noBaseBranch), {}};
    co_return RemoteAnswer{{}, std::move(base)};
}

Task<WorktreeFingerprint> CleanupPreflight::fingerprint(Worktree worktree) {
    std::string status;
    try {
        const GitArguments question{"status", "--porcelain=v2", "-z", "--untracked-files=all",
                                    "--ignored=matching"};
        CommandResult result = co_await git_.run(question, worktree.path, statusLimit);
        status = std::move(result.standardOutput);
    } catch (const std::exception&) {
        // Differs from every real status, and so from what was reviewed.
    }
    std::vector<std::string> ignoredNames;
    ignoredNames.reserve(worktree.ignoredEntries.size());
    for (const IgnoredEntry& entry : worktree.ignoredEntries) ignoredNames.push_back(entry.name);
    co_return WorktreeFingerprint::make(worktree.repositoryRoot, worktree.path, worktree.headSHA,
                                        worktree.branch, WorktreeFingerprint::statusDigest(status),
                                        std::move(ignoredNames));
}

}  // namespace cairnfield
