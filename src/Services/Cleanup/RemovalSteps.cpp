#include "Services/Cleanup/RemovalSteps.h"

#include "Services/Cleanup/PathPresence.h"
#include "Services/Git/FileFacts.h"
#include "Services/Git/GitPorcelainParser.h"
#include "Shared/Errors/CairnfieldError.h"

#include <algorithm>
#include <set>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds statusLimit{30};
constexpr std::chrono::seconds removeLimit{180};

using Paths = std::set<std::string>;

Paths together(const std::vector<std::string>& some, const std::vector<std::string>& others) {
    Paths all(some.begin(), some.end());
    all.insert(others.begin(), others.end());
    return all;
}

}  // namespace

Task<std::optional<GitWorktreeEntry>> RemovalSteps::entry() {
    const std::vector<GitWorktreeEntry> entries = co_await preflight_.listed(plan_.worktree.repositoryRoot);
    co_return PreflightJudgement::entryOf(plan_.worktree, entries);
}

Task<GitStatusSummary> RemovalSteps::status() {
    const GitArguments question{"status", "--porcelain=v2", "-z", "--untracked-files=all", "--ignored=no"};
    const CommandResult result = co_await git_.runChecked(question, plan_.worktree.path, statusLimit);
    co_return GitPorcelainParser::parseStatus(result.standardOutput);
}

Task<std::vector<std::string>> RemovalSteps::assertUnchangedExceptPreservation() {
    const std::string& path = plan_.worktree.path.bytes();
    const std::optional<GitWorktreeEntry> present = co_await entry();
    if (!present) throw CairnfieldError(CairnfieldError::PathMissing{path});
    if (present->isMain)
        throw CairnfieldError(CairnfieldError::WorktreeRemovalFailed{path, "It is the main worktree."});
    if (present->isLocked) throw CairnfieldError(CairnfieldError::WorktreeLocked{path, present->lockReason});

    GitStatusSummary status = co_await this->status();
    const Paths current = together(status.changedPaths, status.untrackedPaths);
    const Paths reviewed = together(plan_.trackedPathsToCommit, plan_.untrackedPathsToCommit);
    const auto uncommitted = std::ranges::count_if(
        reviewed, [&current](const std::string& reviewedPath) { return current.contains(reviewedPath); });
    if (uncommitted > 0) {
        throw CairnfieldError(CairnfieldError::CommandFailed{
            "git status", 0, std::to_string(uncommitted) + " reviewed file(s) are still uncommitted."});
    }
    co_return std::move(status.untrackedPaths);
}

Task<> RemovalSteps::assertStillReported(std::vector<std::string> untracked) {
    const GitStatusSummary present = co_await status();
    const Paths reported = together(present.changedPaths, present.untrackedPaths);
    const FilePath& worktree = plan_.worktree.path;
    const auto overlooked = std::ranges::find_if(untracked, [&](const std::string& path) {
        return !reported.contains(path) && presenceOf(worktree.appending(path)) != PathPresence::absent;
    });
    if (overlooked == untracked.end()) co_return;
    throw CairnfieldError(CairnfieldError::WorktreeActive{
        worktree.bytes(),
        FilePath(*overlooked).display() + " is in no commit, and Git overlooks it by now."});
}

Task<> RemovalSteps::remove() {
    const GitArguments removal{"worktree", "remove", plan_.worktree.path.bytes()};
    const CommandResult result = co_await git_.run(removal, plan_.worktree.repositoryRoot, removeLimit);
    if (!result.succeeded()) {
        throw CairnfieldError(
            CairnfieldError::WorktreeRemovalFailed{plan_.worktree.path.bytes(), result.standardError});
    }
}

Task<> RemovalSteps::verify() {
    const std::string& path = plan_.worktree.path.bytes();
    if (!nothingExistsAt(plan_.worktree.path))
        throw CairnfieldError(
            CairnfieldError::WorktreeRemovalFailed{path, "The directory is still present."});
    const std::optional<GitWorktreeEntry> present = co_await entry();
    if (present)
        throw CairnfieldError(CairnfieldError::WorktreeRemovalFailed{path, "Git still lists the worktree."});
}

}  // namespace cairnfield
