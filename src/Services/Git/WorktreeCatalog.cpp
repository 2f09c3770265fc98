#include "Services/Git/WorktreeCatalog.h"

#include "Services/Git/GitVersion.h"
#include "Services/Git/WorktreeIdentity.h"
#include "Services/Git/WorktreeSafetyClassifier.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds questionLimit{20};

bool comesBefore(const Worktree& left, const Worktree& right) {
    // Main first and the largest first: both descend, so the sides are exchanged. The path makes the order
    // one and the same at every refresh, also while no size is known.
    return std::tie(left.repositoryName, right.isMain, right.sizeBytes, left.path) <
           std::tie(right.repositoryName, left.isMain, left.sizeBytes, right.path);
}

FilePath repositoryRootOf(const std::vector<GitWorktreeEntry>& entries, const FilePath& discovered) {
    const auto main = std::ranges::find_if(entries, &GitWorktreeEntry::isMain);
    return main == entries.end() ? discovered : main->path;
}

/// The remote that a pull request of this worktree's branch would be asked of.
std::optional<GitRemote> remoteToAsk(const Worktree& worktree) {
    if (worktree.isMain || worktree.isBare || !worktree.branch || worktree.remotes.empty())
        return std::nullopt;
    const auto tracked = std::ranges::find_if(worktree.remotes, [&worktree](const GitRemote& remote) {
        return remote.name == worktree.tracking.remoteName;
    });
    const GitRemote& remote = tracked == worktree.remotes.end() ? worktree.remotes.front() : *tracked;
    if (!remote.isGitHub()) return std::nullopt;
    return remote;
}

}  // namespace

WorktreeCatalog::WorktreeCatalog(Executor& pool, std::unique_ptr<RepositoryDiscovering> discovery,
                                 std::unique_ptr<WorktreeInspecting> inspector, GitCommandRunner git)
    : Actor(pool), discovery_(std::move(discovery)), inspector_(std::move(inspector)), git_(std::move(git)) {}

Task<std::optional<std::string>> WorktreeCatalog::whyGitIsTooOld() {
    if (!version_) {
        const GitArguments question{"--version"};
        const std::optional<std::string> answer =
            co_await git_.optionalString(question, FilePath("/"), questionLimit);
        version_ = answer.value_or("");
    }
    co_return GitVersion::whyTooOld(*version_, git_.gitURL());
}

Task<std::vector<Worktree>> WorktreeCatalog::refresh(std::vector<FilePath> roots, RefreshOptions options) {
    std::vector<Worktree> worktrees;
    try {
        const Semaphore::Permit turn = co_await turn_.acquire();
        const std::vector<FilePath> repositories =
            co_await findRepositories(std::move(roots), options.maxDepth);
        for (const FilePath& repository : repositories) {
            co_await checkCancelled();
            co_await inspectRepository(repository, options, worktrees);
        }
    } catch (const Cancelled&) {
        // What was gathered before is the answer.
    }
    std::ranges::sort(worktrees, comesBefore);
    co_return worktrees;
}

Task<std::vector<FilePath>> WorktreeCatalog::findRepositories(std::vector<FilePath> roots, int maxDepth) {
    const std::vector<FilePath> discovered =
        co_await discovery_->discoverRepositories(std::move(roots), maxDepth);
    std::vector<FilePath> repositories;
    std::set<FilePath> seen;
    const GitArguments commonDirectory{"rev-parse", "--path-format=absolute", "--git-common-dir"};
    const GitArguments topLevel{"rev-parse", "--show-toplevel"};
    for (const FilePath& directory : discovered) {
        const std::optional<FilePath> common =
            co_await git_.optionalPath(commonDirectory, directory, questionLimit);
        // A ".git" that git rejects is passed over, and the answer is that of a repository further up.
        if (!common || !isOwnRepository(directory, *common)) continue;
        if (!seen.insert(common->standardized()).second) continue;
        const std::optional<FilePath> root = co_await git_.optionalPath(topLevel, directory, questionLimit);
        repositories.push_back(root.value_or(directory));
    }
    co_return repositories;
}

Task<> WorktreeCatalog::inspectRepository(FilePath repository, RefreshOptions options,
                                          std::vector<Worktree>& worktrees) {
    std::vector<GitWorktreeEntry> entries;
    try {
        std::vector<GitWorktreeEntry> listed = co_await inspector_->listWorktrees(repository);
        entries = std::move(listed);
    } catch (const std::exception& failure) {
        Log::git().debug("Listing the worktrees of {} failed: {}", repository.display(),
                         visibleText(describe(failure)));
        co_return;
    }
    const WorktreeInspectionOptions inspection{.includeSize = options.includeSizes,
                                               .includeIgnoredEntries = true,
                                               .pinnedPaths = std::move(options.pinnedPaths),
                                               .activityWindow = activityWindow};
    const FilePath root = repositoryRootOf(entries, repository);
    for (const GitWorktreeEntry& entry : entries) {
        Worktree worktree = co_await inspector_->inspect(entry, root, inspection);
        worktrees.push_back(std::move(worktree));
    }
}

Task<std::vector<Worktree>> WorktreeCatalog::attachPullRequests(std::vector<Worktree> worktrees,
                                                                GitHubServicing& github) {
    try {
        const Semaphore::Permit turn = co_await turn_.acquire();
        for (Worktree& worktree : worktrees) co_await attachPullRequest(worktree, github);
    } catch (const Cancelled&) {
        // The rest stays as it was.
    }
    co_return worktrees;
}

Task<> WorktreeCatalog::attachPullRequest(Worktree& worktree, GitHubServicing& github) {
    const std::optional<GitRemote> remote = remoteToAsk(worktree);
    if (!remote) co_return;
    try {
        std::optional<PullRequestInfo> found =
            co_await github.findPullRequest(*worktree.branch, worktree.path, remote->host());
        worktree.pullRequest = std::move(found);
    } catch (const std::exception& failure) {
        Log::git().debug("No word on a pull request for {}: {}", worktree.path.display(),
                         visibleText(describe(failure)));
        co_return;
    }
    worktree.safety = WorktreeSafetyClassifier::classify(worktree);
}

}  // namespace cairnfield
