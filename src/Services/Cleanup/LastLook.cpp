#include "Services/Cleanup/LastLook.h"

#include "Services/Cleanup/AccountedFiles.h"
#include "Services/Cleanup/ArchivedCopies.h"
#include "Services/Cleanup/HiddenFiles.h"
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
using Entries = std::vector<GitIndexEntry>;
using Paths = std::unordered_set<std::string>;

constexpr const char* movedHead = "Its HEAD is not where it was left.";
constexpr const char* unreadableHead = "Its HEAD could not be read.";
constexpr const char* unreadableIndex = "Its index could not be understood.";

Objection objectionToHead(const ExpectedHead& expected, const WorktreeGitFiles& files) {
    if (expected.form == ExpectedHead::Form::anywhere) return std::nullopt;
    const HeadOnDisk head = headOnDisk(files);
    switch (head.form) {
        case HeadOnDisk::Form::keptElsewhere:
        case HeadOnDisk::Form::unreadable:
            return unreadableHead;
        case HeadOnDisk::Form::unborn:
            if (expected.form == ExpectedHead::Form::unborn) return std::nullopt;
            return movedHead;
        case HeadOnDisk::Form::commit:
            break;
    }
    const bool isThere = expected.form == ExpectedHead::Form::commit && head.commit == expected.commit;
    if (!isThere) return movedHead;
    if (!expected.isElsewhere && head.goesWithWorktree) return "Its commits are on a reference of its own.";
    return std::nullopt;
}

/// Its state, and work that it has put aside, are kept in the worktree's own Git directory alone.
Objection objectionToOperation(const WorktreeGitFiles& files) {
    const std::optional<GitOperationInProgress> operation = operationInProgress(files.own);
    if (!operation) return std::nullopt;
    return "A " + std::string(displayName(*operation)) + " is in progress.";
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

TreeLookQuestion treeQuestion(const FilePath& root, const Entries& entries, const timespec& indexModified) {
    TreeLookQuestion question{root, {}, {}, indexModified};
    for (const GitIndexEntry& entry : entries) {
        if (entry.isSubmodule()) question.submodules.insert(entry.path);
        if (entry.path == "HEAD" || entry.path.ends_with("/HEAD")) question.trackedHeads.insert(entry.path);
    }
    return question;
}

Objection objectionTo(const LastLookQuestion& question, const VolumeInformation& volumes) {
    const Worktree& reviewed = question.reviewed;
    const std::optional<WorktreeGitFiles> files = gitFilesOf(reviewed.path);
    if (!files || resolvedPath(reviewed.gitCommonDir) != files->common)
        return "Its path no longer leads to the worktree that was reviewed.";
    Objection objection = objectionToHead(question.head, *files);
    if (objection) return objection;
    objection = objectionToOperation(*files);
    if (objection) return objection;
    objection = whatMustStayInside(reviewed, *files, question.mustStay);
    if (objection) return objection;
    objection = objectionToMounts(reviewed.path, volumes);
    if (objection) return objection;

    const std::optional<Entries> entries = readGitIndex(files->own, objectBytes(reviewed));
    if (!entries) return unreadableIndex;
    const timespec indexModified = whenIndexWasWritten(*files);
    objection = objectionToHiddenFiles(reviewed.path, *entries, indexModified);
    if (objection) return objection;
    AccountedFiles accounted(reviewed, *entries, question.untracked);
    TreeLookQuestion wholeTree = treeQuestion(reviewed.path, *entries, indexModified);
    wholeTree.accounted = &accounted;
    const TreeLook tree = lookAtTree(wholeTree);
    if (tree.objection) return tree.objection;
    objection =
        objectionToUnseenChanges(reviewed.path, *entries, tree.changedInTheSecondOfTheIndex, indexModified);
    if (objection) return objection;
    if (tree.unaccounted) return tree.unaccounted;
    return objectionToCopies(question.archived);
}

}  // namespace

ExpectedHead ExpectedHead::preserved(const std::optional<std::string>& commit) {
    return commit ? ExpectedHead{Form::commit, *commit} : ExpectedHead{};
}

ExpectedHead ExpectedHead::reviewed(const Worktree& worktree) {
    if (!worktree.headSHA) return {Form::unborn, {}};
    const RemoteTrackingState& tracking = worktree.tracking;
    const bool isElsewhere = tracking.headIsRemotelyPreserved || tracking.uniqueCommitCount == 0;
    return {Form::commit, *worktree.headSHA, isElsewhere};
}

std::optional<CairnfieldError> lookBeforeRemoval(const LastLookQuestion& question,
                                                 const VolumeInformation& volumes) {
    Objection objection;
    try {
        objection = objectionTo(question, volumes);
    } catch (const std::exception& failure) {
        objection = "It could not be looked at once more: " + describe(failure);
    }
    if (!objection) return std::nullopt;
    return CairnfieldError(
        CairnfieldError::WorktreeRemovalFailed{question.reviewed.path.bytes(), *std::move(objection)});
}

}  // namespace cairnfield
