#include "Services/Git/GitWorktreeInspector.h"

#include "Services/Git/FileFacts.h"
#include "Services/Git/GitPorcelainParser.h"
#include "Services/Git/IgnoredFileClassifier.h"
#include "Services/Git/RemoteQuestions.h"
#include "Services/Git/WorktreeIdentity.h"
#include "Services/Git/WorktreeSafetyClassifier.h"
#include "Shared/Errors/CairnfieldError.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds listLimit{30};
/// Three times the usual: the whole tree is walked for untracked and ignored files.
constexpr std::chrono::seconds statusLimit{60};

struct OperationMark {
    std::string_view name;
    GitOperationInProgress operation;
};

/// In the order of their weight: a rebase that stopped at a merge is a rebase.
constexpr std::array operationMarks{
    OperationMark{"rebase-merge", GitOperationInProgress::rebase},
    OperationMark{"rebase-apply", GitOperationInProgress::rebase},
    OperationMark{"MERGE_HEAD", GitOperationInProgress::merge},
    OperationMark{"CHERRY_PICK_HEAD", GitOperationInProgress::cherryPick},
    OperationMark{"REVERT_HEAD", GitOperationInProgress::revert},
    OperationMark{"BISECT_LOG", GitOperationInProgress::bisect},
};

Worktree baseRecord(const GitWorktreeEntry& entry, const FilePath& repositoryRoot,
                    const WorktreeInspectionOptions& options) {
    Worktree worktree;
    worktree.path = entry.path;
    worktree.repositoryRoot = repositoryRoot;
    worktree.gitCommonDir = entry.path.appending(".git");
    worktree.repositoryName = repositoryRoot.lastComponent();
    worktree.isMain = entry.isMain;
    worktree.isBare = entry.isBare;
    worktree.isLocked = entry.isLocked;
    worktree.lockReason = entry.lockReason;
    worktree.isPrunable = entry.isPrunable;
    worktree.prunableReason = entry.prunableReason;
    worktree.branch = entry.branch;
    worktree.isDetached = entry.isDetached;
    worktree.headSHA = commitOf(entry);
    const bool isClaude = entry.path.bytes().find(".claude/worktrees") != std::string::npos;
    worktree.source = isClaude ? WorktreeSource::claude : WorktreeSource::generic;
    worktree.isPinned = options.pinnedPaths.contains(entry.path.standardized());
    return worktree;
}

/// Entries of one size keep their order.
std::vector<IgnoredEntry> largestFirst(std::vector<IgnoredEntry> entries) {
    std::vector<std::size_t> places(entries.size());
    std::iota(places.begin(), places.end(), 0);
    std::ranges::sort(places, [&entries](std::size_t left, std::size_t right) {
        const std::int64_t leftSize = entries[left].sizeBytes;
        const std::int64_t rightSize = entries[right].sizeBytes;
        return leftSize != rightSize ? leftSize > rightSize : left < right;
    });
    std::vector<IgnoredEntry> sorted;
    sorted.reserve(entries.size());
    for (const std::size_t place : places) sorted.push_back(std::move(entries[place]));
    return sorted;
}

void markInaccessible(Worktree& worktree, std::string reason) {
    worktree.safety = WorktreeSafety::inaccessible;
    worktree.inspectionError = std::move(reason);
}

}  // namespace

std::optional<std::string> commitOf(const GitWorktreeEntry& entry) {
    const bool namesACommit = entry.head && entry.head->find_first_not_of('0') != std::string::npos;
    return namesACommit ? entry.head : std::nullopt;
}

std::optional<GitOperationInProgress> operationInProgress(const FilePath& gitDirectory) {
    const auto exists = [&gitDirectory](const OperationMark& mark) {
        return factsOf(gitDirectory.appending(mark.name)).has_value();
    };
    const auto found = std::ranges::find_if(operationMarks, exists);
    if (found == operationMarks.end()) return std::nullopt;
    return found->operation;
}

Task<std::vector<GitWorktreeEntry>> GitWorktreeInspector::listWorktrees(FilePath repositoryRoot) {
    GitArguments arguments{"worktree", "list", "--porcelain", "-z"};
    const CommandResult result =
        co_await git_.runChecked(std::move(arguments), std::move(repositoryRoot), listLimit);
    co_return GitPorcelainParser::parseWorktreeList(result.standardOutput);
}

Task<Worktree> GitWorktreeInspector::inspect(GitWorktreeEntry entry, FilePath repositoryRoot,
                                             WorktreeInspectionOptions options) {
    Worktree worktree = baseRecord(entry, repositoryRoot, options);
    if (nothingExistsAt(worktree.path)) {
        markInaccessible(worktree, "The worktree path no longer exists.");
        co_return worktree;
    }
    if (worktree.isBare) {
        worktree.safety = WorktreeSafety::bareRepository;
        co_return worktree;
    }
    // Not even asked otherwise: git would answer for whatever repository the path leads to.
    std::optional<std::string> reason = whyNotTheListedWorktree(entry, repositoryRoot);
    if (reason) {
        markInaccessible(worktree, *std::move(reason));
        co_return worktree;
    }

    co_await readGitDirectories(worktree);
    co_await readStatus(worktree, options.includeIgnoredEntries);
    if (worktree.inspectionError) co_return worktree;
    co_await readSubmodules(worktree);
    co_await readRemotes(git_, worktree);
    co_await readTracking(git_, worktree);
    if (options.includeIgnoredEntries) co_await readIgnoredEntries(worktree);
    co_await readSize(worktree, options.includeSize);
    co_await readActivity(worktree, options.activityWindow);
    worktree.safety = WorktreeSafetyClassifier::classify(worktree);
    co_return worktree;
}

Task<> GitWorktreeInspector::readGitDirectories(Worktree& worktree) {
    const FilePath path = worktree.path;
    const GitArguments commonDirectory{"rev-parse", "--git-common-dir"};
    const std::optional<FilePath> common = co_await git_.optionalPath(commonDirectory, path, questionLimit);
    if (common) {
        worktree.gitCommonDir =
            common->isAbsolute() ? *common : path.appending(common->bytes()).standardized();
    }
    // The worktree's own, since an unfinished operation belongs to one worktree.
    const GitArguments ownDirectory{"rev-parse", "--absolute-git-dir"};
    const std::optional<FilePath> own = co_await git_.optionalPath(ownDirectory, path, questionLimit);
    if (own) worktree.operationInProgress = operationInProgress(*own);

    if (worktree.headSHA) co_return;
    const GitArguments headCommit{"rev-parse", "HEAD"};
    std::optional<std::string> head = co_await git_.optionalString(headCommit, path, questionLimit);
    worktree.headSHA = std::move(head);
}

Task<> GitWorktreeInspector::readStatus(Worktree& worktree, bool includeIgnoredEntries) {
    const GitArguments status{"status", "--porcelain=v2", "-z", "--untracked-files=all",
                              includeIgnoredEntries ? "--ignored=matching" : "--ignored=no"};
    try {
        const CommandResult result = co_await git_.runChecked(status, worktree.path, statusLimit);
        worktree.status = GitPorcelainParser::parseStatus(result.standardOutput);
    } catch (const std::exception& failure) {
        markInaccessible(worktree, describe(failure));
    }
}

Task<> GitWorktreeInspector::readSubmodules(Worktree& worktree) {
    const GitArguments status{"submodule", "status", "--recursive"};
    const std::optional<std::string> answer =
        co_await git_.optionalString(status, worktree.path, questionLimit);
    if (answer) worktree.submodulesDirty = GitPorcelainParser::submodulesNeedReview(*answer);
}

Task<> GitWorktreeInspector::readIgnoredEntries(Worktree& worktree) {
    std::vector<IgnoredEntry> entries;
    const std::vector<std::string> names =
        IgnoredFileClassifier::topLevelEntries(worktree.status.ignoredPaths);
    for (const std::string& name : names) {
        const FilePath item = worktree.path.appending(name);
        IgnoredEntry entry;
        entry.name = name;
        entry.relativePath = name;
        entry.classification = IgnoredFileClassifier::classify(name);
        const std::optional<FileFacts> facts = factsOf(item);
        if (facts) {
            entry.isDirectory = facts->isDirectory;
            entry.modifiedAt = facts->modifiedAt;
        }
        const std::int64_t size = co_await sizeOfIgnored(item, entry.isDirectory, entry.classification);
        entry.sizeBytes = size;
        entries.push_back(std::move(entry));
    }
    worktree.ignoredEntries = largestFirst(std::move(entries));
}

Task<std::int64_t> GitWorktreeInspector::sizeOfIgnored(FilePath item, bool isDirectory,
                                                       IgnoredEntryClass classification) {
    try {
        if (!isDirectory) co_return scanner_.allocatedSize(item);
        if (classification != IgnoredEntryClass::rebuildable) {
            const DirectoryScanResult walked = co_await scanner_.size(item, true);
            co_return walked.totalBytes;
        }
        // No walk of a package directory is worth its time here: the verdict does not depend on it.
        const std::optional<DirectoryScanResult> cached = co_await scanner_.cachedResult(item);
        if (cached) co_return cached->totalBytes;
    } catch (const std::exception&) {
        // An entry that cannot be sized counts as nothing; the inspection goes on.
    }
    co_return 0;
}

Task<> GitWorktreeInspector::readSize(Worktree& worktree, bool includeSize) {
    if (!includeSize) {
        // A size from an earlier walk is shown as the estimate that it is.
        const std::optional<DirectoryScanResult> cached = co_await scanner_.cachedResult(worktree.path);
        if (cached) worktree.sizeBytes = cached->totalBytes;
        co_return;
    }
    try {
        const DirectoryScanResult walked = co_await scanner_.size(worktree.path, true);
        worktree.sizeBytes = walked.totalBytes;
        worktree.sizeIsEstimated = walked.isEstimated;
    } catch (const std::exception&) {
        // The size stays unknown.
    }
}

Task<> GitWorktreeInspector::readActivity(Worktree& worktree, double window) {
    const ActivitySignal signal = co_await activityDetector_.activity(worktree.path, window);
    worktree.lastActivity = signal.lastActivity;
    worktree.isActive = signal.isActive || worktree.isLocked;
    worktree.activityReason = signal.reason;
    if (worktree.isLocked)
        worktree.activityReason = worktree.lockReason.value_or("Git has this worktree locked.");
}

}  // namespace cairnfield
