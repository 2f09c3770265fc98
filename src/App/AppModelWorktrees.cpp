#include "App/AppModel.h"
#include "App/CleanupServices.h"
#include "Models/WorktreeGroups.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/Git/WorktreeSafetyClassifier.h"
#include "Services/GitHub/GitHubCLIService.h"
#include "Services/Process/ExecutableLocator.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

/// Levels below a watched folder at which repositories are still found.
constexpr int discoveryDepth = 4;

/// Where the worktree of this path stands in the list. It is looked for at `hint` first: the list rarely
/// changes while its worktrees are sized one after another.
std::optional<std::size_t> indexOf(const std::vector<Worktree>& worktrees, const FilePath& path,
                                   std::size_t hint) {
    const FilePath wanted = path.standardized();
    if (hint < worktrees.size() && worktrees[hint].id() == wanted) return hint;
    const auto found =
        std::ranges::find_if(worktrees, [&](const Worktree& worktree) { return worktree.id() == wanted; });
    if (found == worktrees.end()) return std::nullopt;
    return std::size_t(found - worktrees.begin());
}

/// Puts the answer about one worktree into the list as it is now, and nothing but the answer: sizes, pins and
/// the list itself may have changed since it was asked. One that has gone, or moved on to another commit,
/// keeps what it has. Gives whether anything changed.
bool takePullRequest(std::vector<Worktree>& present, std::size_t hint, const Worktree& asked,
                     const Worktree& answered) {
    if (answered == asked) return false;
    const std::optional<std::size_t> index = indexOf(present, asked.path, hint);
    if (!index) return false;
    Worktree& worktree = present[*index];
    if (worktree.headSHA != asked.headSHA || worktree.branch != asked.branch) return false;
    const Worktree before = worktree;
    worktree.pullRequest = answered.pullRequest;
    worktree.safety = WorktreeSafetyClassifier::classify(worktree);
    return worktree != before;
}

}  // namespace

std::int64_t AppModel::estimatedReclaimableBytes() const {
    std::int64_t bytes = 0;
    for (const Worktree& worktree : state_.worktrees.get()) {
        if (isSafeOrPreserved(worktree.safety)) bytes += worktree.sizeBytes;
    }
    return bytes;
}

std::vector<Worktree> AppModel::worktreesNeedingAttention() const {
    std::vector<Worktree> found;
    std::ranges::copy_if(state_.worktrees.get(), std::back_inserter(found), needsAttention);
    return found;
}

std::vector<ProjectUsage> AppModel::projects() const {
    return ProjectUsage::rollUp(state_.worktrees.get());
}

void AppModel::configureGitServices() {
    assertIsolated();
    const ExecutableLocator locator(settings_.gitPathOverride.get(), settings_.gitHubCLIPathOverride.get());
    std::optional<FilePath> git;
    try {
        git = locator.locateGit();
    } catch (const CairnfieldError& error) {
        catalog_.reset();
        cleanup_->replaceCrew(nullptr);
        state_.gitPath.set(std::nullopt);
        state_.gitStatusMessage.set(error.errorDescription());
        return;
    }
    state_.gitStatusMessage.set(std::nullopt);
    state_.gitPath.set(git);
    const GitCommandRunner runner(environment_.processRunner, *git);
    catalog_ = std::make_shared<WorktreeCatalog>(
        environment_.pool, std::make_unique<RepositoryDiscoveryService>(environment_.blocking),
        std::make_unique<GitWorktreeInspector>(runner, scanner_, activityDetector_), runner);
    try {
        githubService_ =
            std::make_shared<GitHubCLIService>(environment_.processRunner, locator.locateGitHubCLI());
    } catch (const CairnfieldError& error) {
        githubService_ = std::make_shared<UnavailableGitHubService>(error);
    }
    const CleanupCoordinator::Surroundings surroundings{environment_.pool, environment_.blocking,
                                                        environment_.volumes, environment_.wallClock,
                                                        environment_.support.directory()};
    cleanup_->replaceCrew(std::make_shared<CleanupServices::Crew>(
        surroundings, *cleanup_, runner, githubService_,
        std::make_unique<GitWorktreeInspector>(runner, scanner_, activityDetector_)));
}

Task<> AppModel::refuseGitThatIsTooOld() {
    // Asked again where the tools were looked for anew meanwhile, as at the start of the program.
    while (const std::shared_ptr<WorktreeCatalog> catalog = catalog_) {
        const std::optional<std::string> reason = co_await catalog->whyGitIsTooOld();
        if (catalog_ != catalog) continue;
        if (!reason) co_return;
        catalog_.reset();
        cleanup_->replaceCrew(nullptr);
        state_.gitStatusMessage.set(reason);
    }
}

Task<> AppModel::refreshIntegrations() {
    configureGitServices();
    co_await refuseGitThatIsTooOld();
    const std::shared_ptr<GitHubServicing> service = githubService_;
    GitHubIntegrationStatus status = GitHubIntegrationStatus::unavailable();
    if (service) status = co_await service->status();
    state_.githubStatus.set(std::move(status));
}

Task<> AppModel::refreshWorktrees(bool includeSizes) {
    if (!catalog_) {
        state_.worktreeRefreshError.set(
            state_.gitStatusMessage.get().value_or("Git was not found on this Mac."));
        co_return;
    }
    if (state_.isRefreshingWorktrees.get()) co_return;
    state_.isRefreshingWorktrees.set(true);
    cancelSizing();

    std::vector<FilePath> roots;
    for (const WatchedFolder& folder : state_.watchedFolders.get()) {
        if (folder.isEnabled) roots.push_back(folder.path);
    }
    if (roots.empty()) {
        state_.worktrees.set({});
        state_.worktreeRefreshError.set(std::nullopt);
        state_.isRefreshingWorktrees.set(false);
        co_return;
    }

    co_await refuseGitThatIsTooOld();
    if (!catalog_) {
        state_.worktreeRefreshError.set(state_.gitStatusMessage.get());
        state_.isRefreshingWorktrees.set(false);
        co_return;
    }
    WorktreeCatalog::RefreshOptions options;
    options.maxDepth = discoveryDepth;
    options.pinnedPaths = co_await folderStore_.pinnedWorktreePaths();
    // A change of the tools replaces the catalog; the one that began goes on to its end.
    const std::shared_ptr<WorktreeCatalog> catalog = catalog_;
    std::vector<Worktree> found;
    if (catalog) found = co_await catalog->refresh(std::move(roots), std::move(options));

    state_.worktrees.set(std::move(found));
    state_.lastWorktreeRefresh.set(environment_.wallClock.now());
    state_.worktreeRefreshError.set(std::nullopt);
    Log::git().info("Discovered {} worktree(s) across {} project(s)", state_.worktrees.get().size(),
                    projects().size());
    if (includeSizes) startSizing(false);
    state_.isRefreshingWorktrees.set(false);
}

void AppModel::startSizing(bool force) {
    assertIsolated();
    cancelSizing();
    std::vector<FilePath> paths;
    for (const Worktree& worktree : state_.worktrees.get()) paths.push_back(worktree.path);
    if (paths.empty()) return;
    state_.sizingProgress.set(SizingProgress{0, std::int64_t(paths.size())});
    sizingTask_ = operations_.add(environment_.mainThread, sizeAll(std::move(paths), force, sizingRun_));
}

void AppModel::cancelSizing() {
    assertIsolated();
    std::exchange(sizingTask_, {}).cancel();
    ++sizingRun_;
    state_.sizingProgress.set(std::nullopt);
}

Task<> AppModel::sizeAll(std::vector<FilePath> paths, bool force, std::uint64_t run) {
    const std::stop_token stop = co_await currentStopToken();
    for (std::size_t position = 0; position < paths.size() && !stop.stop_requested(); ++position) {
        std::int64_t bytes = 0;
        try {
            const DirectoryScanResult result = co_await scanner_.size(paths[position], !force);
            bytes = result.totalBytes;
        } catch (const std::exception&) {
            bytes = 0;  // what cannot be sized takes part with nothing, and the others go on
        }
        // The list may have been replaced while the walk ran, so the worktree is looked up anew.
        state_.worktrees.mutate([&](std::vector<Worktree>& worktrees) {
            const std::optional<std::size_t> index = indexOf(worktrees, paths[position], position);
            if (!index || worktrees[*index].sizeBytes == bytes) return false;
            worktrees[*index].sizeBytes = bytes;
            return true;
        });
        if (run == sizingRun_) {
            state_.sizingProgress.set(SizingProgress{std::int64_t(position) + 1, std::int64_t(paths.size())});
        }
    }
    if (run == sizingRun_) {
        state_.sizingProgress.set(std::nullopt);
        sizingTask_ = {};
    }
    Log::scanner().info("Sized {} worktree(s)", state_.worktrees.get().size());
}

Task<> AppModel::sizingFinished() {
    const TaskHandle<> sizing = sizingTask_;
    if (sizing) co_await sizing.value();
}

Task<> AppModel::refreshRemoteState() {
    const std::shared_ptr<WorktreeCatalog> catalog = catalog_;
    const std::shared_ptr<GitHubServicing> service = githubService_;
    if (!catalog || !service) co_return;
    const std::vector<Worktree> asked = state_.worktrees.get();
    const std::vector<Worktree> answered = co_await catalog->attachPullRequests(asked, *service);
    state_.worktrees.mutate([&](std::vector<Worktree>& present) {
        bool isChanged = false;
        for (std::size_t place = 0; place < asked.size() && place < answered.size(); ++place)
            isChanged |= takePullRequest(present, place, asked[place], answered[place]);
        return isChanged;
    });
}

Task<> AppModel::togglePin(Worktree worktree) {
    const FilePath path = worktree.id();
    try {
        co_await folderStore_.setPinned(!worktree.isPinned, path);
    } catch (const std::exception& error) {
        Log::persistence().error("Storing a pin failed: {}", describe(error));
    }
    state_.worktrees.mutate([&](std::vector<Worktree>& worktrees) {
        const std::optional<std::size_t> index = indexOf(worktrees, path, 0);
        if (!index) return false;
        worktrees[*index].isPinned = !worktrees[*index].isPinned;
        return true;
    });
}

}  // namespace cairnfield
