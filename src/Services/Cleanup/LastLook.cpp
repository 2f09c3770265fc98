#include "Services/Cleanup/LastLook.h"

#include "Services/Cleanup/ArchivedCopies.h"
#include "Services/Cleanup/HeadLook.h"
#include "Services/Cleanup/HiddenFiles.h"
#include "Services/Cleanup/InnerRepositories.h"
#include "Services/Cleanup/OwnReferences.h"
#include "Services/Cleanup/PathsThatStay.h"
#include "Services/Cleanup/TreeLook.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/Git/WorktreeGitFiles.h"
#include "Shared/Paths/PathContainment.h"

#include <sys/stat.h>

#include <algorithm>
#include <exception>
#include <unordered_set>

namespace cairnfield {

namespace {

using Objection = std::optional<std::string>;
using Refusal = std::optional<RemovalRefusal>;
using Entries = std::vector<GitIndexEntry>;
using Paths = std::unordered_set<std::string>;

std::string firstComponent(const std::string& path) {
    return path.substr(0, path.find('/'));
}

Objection objectionToMounts(const FilePath& worktree, const VolumeInformation& volumes) {
    const std::optional<FilePath> folder = resolvedPath(worktree);
    for (const FilePath& point : volumes.mountPoints()) {
        if (folder && isAtOrBelow(point, *folder))
            return "Something is mounted inside it: " + point.display() + ".";
    }
    return std::nullopt;
}

/// The index's length of object names is that of HEAD's commit.
std::size_t objectBytes(const Worktree& worktree) {
    return worktree.headSHA && worktree.headSHA->size() == 64 ? 32 : 20;
}

/// The beginning of time when there is no index.
timespec whenIndexWasWritten(const WorktreeGitFiles& files) {
    struct stat index{};
    (void)stat(files.own.appending("index").c_str(), &index);
    return index.st_mtim;
}

Objection objectionToHiddenFiles(const FilePath& worktree, const Entries& entries,
                                 const timespec& indexModified) {
    for (const GitIndexEntry& entry : entries) {
        if (!entry.isHidden() || entry.isSubmodule()) continue;
        if (differsFromIndex(worktree, entry, indexModified)) {
            return FilePath(entry.path).display() +
                   " differs from what Git holds, and Git was told to overlook it.";
        }
    }
    return std::nullopt;
}

Objection objectionToUnseenChanges(const FilePath& worktree, const Entries& entries, const Paths& touched,
                                   const timespec& indexModified) {
    if (touched.empty()) return std::nullopt;
    for (const GitIndexEntry& entry : entries) {
        if (touched.contains(entry.path) && changedUnseen(worktree, entry, indexModified))
            return FilePath(entry.path).display() + " differs from what Git holds, and Git does not see it.";
    }
    return std::nullopt;
}

/// What git ignores as a whole, under a name that the review told as rebuildable.
Paths rebuildableDirectories(const Worktree& reviewed) {
    Paths tops;
    for (const IgnoredEntry& entry : reviewed.rebuildableIgnoredEntries()) tops.insert(entry.name);
    Paths directories;
    for (const std::string& path : reviewed.status.ignoredPaths) {
        if (path.ends_with('/') && tops.contains(firstComponent(path)))
            directories.insert(path.substr(0, path.size() - 1));
    }
    return directories;
}

TreeLookQuestion treeQuestion(const Worktree& reviewed, const Entries& entries,
                              const timespec& indexModified) {
    TreeLookQuestion question{reviewed.path, {},      {},
                              indexModified, nullptr, rebuildableDirectories(reviewed)};
    for (const GitIndexEntry& entry : entries) {
        if (entry.isSubmodule()) question.submodules.insert(entry.path);
        if (entry.path == "HEAD" || entry.path.ends_with("/HEAD")) question.trackedHeads.insert(entry.path);
    }
    return question;
}

/// What git keeps for the worktree, besides its files.
Refusal refusalOfGitFiles(const LastLookQuestion& question, const WorktreeGitFiles& files, GitAnswers& git) {
    Refusal refusal = refusalOfHead(question.head, question.reviewed, files, git);
    if (refusal) return refusal;
    // Its state, and work that it has put aside, are kept in the worktree's own Git directory alone.
    const std::optional<GitOperationInProgress> operation = operationInProgress(files.own);
    if (operation) return RemovalRefusal::unfinished(*operation);
    return refusalOfOwnReferences(question.reviewed, files, git);
}

Refusal refusalOfTree(const LastLookQuestion& question, const WorktreeGitFiles& files, GitAnswers& git) {
    const Worktree& reviewed = question.reviewed;
    const std::optional<Entries> entries = readGitIndex(files.own, objectBytes(reviewed));
    if (!entries)
        return RemovalRefusal("Its index could not be understood.", RemovalRefusal::Kind::unreadable);
    const timespec indexModified = whenIndexWasWritten(files);
    Objection objection = objectionToHiddenFiles(reviewed.path, *entries, indexModified);
    if (objection) return objection;
    AccountedFiles accounted(reviewed, *entries, question.seen);
    TreeLookQuestion wholeTree = treeQuestion(reviewed, *entries, indexModified);
    wholeTree.accounted = &accounted;
    const TreeLook tree = lookAtTree(wholeTree);
    if (tree.objection) return tree.objection;
    Refusal refusal = refusalOfInnerRepositories(reviewed.path, tree.repositoriesInRebuildableOutput, git);
    if (refusal) return refusal;
    objection =
        objectionToUnseenChanges(reviewed.path, *entries, tree.changedInTheSecondOfTheIndex, indexModified);
    if (objection) return objection;
    return tree.unaccounted;
}

Refusal refusalOf(const LastLookQuestion& question, const VolumeInformation& volumes, GitAnswers& git) {
    const Worktree& reviewed = question.reviewed;
    const std::optional<WorktreeGitFiles> files = gitFilesOf(reviewed.path);
    if (!files || resolvedPath(reviewed.gitCommonDir) != files->common)
        return RemovalRefusal("Its path no longer leads to the worktree that was reviewed.",
                              RemovalRefusal::Kind::elsewhere);
    Refusal refusal = refusalOfGitFiles(question, *files, git);
    if (refusal) return refusal;
    refusal = whatMustStayInside(reviewed, *files, question.mustStay);
    if (refusal) return refusal;
    refusal = objectionToMounts(reviewed.path, volumes);
    if (refusal) return refusal;
    refusal = refusalOfTree(question, *files, git);
    if (refusal) return refusal;
    const Objection copies = objectionToCopies(question.archived);
    if (copies) return RemovalRefusal(*copies, RemovalRefusal::Kind::copies);
    return std::nullopt;
}

}  // namespace

std::optional<RemovalRefusal> lookBeforeRemoval(const LastLookQuestion& question,
                                                const VolumeInformation& volumes, GitAnswers& git) {
    try {
        return refusalOf(question, volumes, git);
    } catch (const std::exception& failure) {
        return RemovalRefusal("It could not be looked at once more: " + describe(failure),
                              RemovalRefusal::Kind::unreadable);
    }
}

}  // namespace cairnfield
