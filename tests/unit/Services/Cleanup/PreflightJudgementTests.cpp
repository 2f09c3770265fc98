#include "Services/Cleanup/PreflightJudgement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using namespace PreflightJudgement;
using testing::ElementsAre;
using testing::IsEmpty;

Worktree reviewed() {
    Worktree worktree;
    worktree.path = FilePath("/w");
    worktree.branch = "feature";
    worktree.headSHA = "abc";
    return worktree;
}

GitWorktreeEntry entryLike(const Worktree& worktree) {
    GitWorktreeEntry entry;
    entry.path = worktree.path;
    entry.branch = worktree.branch;
    entry.head = worktree.headSHA;
    return entry;
}

TEST(PreflightOfTheSnapshot, ObjectsInItsOrder) {
    Worktree worktree = reviewed();
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::there), std::nullopt);
    worktree.isPinned = true;
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::there), "This worktree is pinned in Cairnfield.");
    worktree.isBare = true;
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::there), "This is a bare repository.");
    worktree.isMain = true;
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::there), "This is the repository's main worktree.");
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::missing), "The worktree path no longer exists.");
}

TEST(PreflightOfTheSnapshot, LooksAtThePinAndNotAtTheLock) {
    Worktree worktree = reviewed();
    worktree.isLocked = true;
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::there), std::nullopt);
    worktree.isPinned = true;
    EXPECT_EQ(objectionToSnapshot(worktree, PathOnDisk::there), "This worktree is pinned in Cairnfield.");
}

TEST(PreflightOfTheVerdict, OrdersAllVerdicts) {
    using enum WorktreeSafety;
    const std::vector<std::vector<WorktreeSafety>> fromSafeToUnsafe{
        {cleanDisposable, cleanMerged, remotelyPreserved, openPullRequest},
        {sensitiveIgnoredFiles, unsupportedRemote, manualReview},
        {committedButUnpushed, dirtyTrackedChanges, untrackedChanges, detachedWithUniqueCommits},
        {submoduleRequiresReview, mergeOrRebaseInProgress, unresolvedConflicts},
        {activeOrLocked},
        {mainWorktree, bareRepository, inaccessible}};
    std::size_t pairs = 0;
    for (std::size_t left = 0; left < fromSafeToUnsafe.size(); ++left) {
        for (std::size_t right = 0; right < fromSafeToUnsafe.size(); ++right) {
            for (const WorktreeSafety fresh : fromSafeToUnsafe[left]) {
                for (const WorktreeSafety reviewedAs : fromSafeToUnsafe[right]) {
                    EXPECT_EQ(isLessSafe(fresh, reviewedAs), left > right)
                        << rawValue(fresh) << " after " << rawValue(reviewedAs);
                    ++pairs;
                }
            }
        }
    }
    EXPECT_EQ(pairs, 18U * 18U) << "each verdict stands once";
}

TEST(PreflightOfTheVerdict, StopsInTheWordsForAWorktreeThatChanged) {
    Worktree before = reviewed();
    before.safety = WorktreeSafety::cleanMerged;
    Worktree fresh = before;
    EXPECT_EQ(reasonInVerdict(before, fresh, false), std::nullopt);
    fresh.safety = WorktreeSafety::manualReview;
    EXPECT_EQ(reasonInVerdict(before, fresh, false), "The worktree at /w changed after you reviewed it.");
    EXPECT_EQ(reasonInVerdict(before, fresh, true), "The worktree at /w changed after you reviewed it.");
    EXPECT_EQ(reasonInVerdict(fresh, before, false), std::nullopt);
}

TEST(PreflightOfTheVerdict, SeesADetachedCommitThatNothingElseWouldHoldBehindAnyVerdict) {
    Worktree before = reviewed();
    before.branch.reset();
    before.isDetached = true;
    before.safety = WorktreeSafety::untrackedChanges;
    before.tracking.headIsRemotelyPreserved = true;
    Worktree fresh = before;
    EXPECT_EQ(reasonInVerdict(before, fresh, false), std::nullopt);
    fresh.tracking.headIsRemotelyPreserved = false;
    EXPECT_NE(reasonInVerdict(before, fresh, false), std::nullopt);
    EXPECT_EQ(reasonInVerdict(before, fresh, true), std::nullopt) << "it goes onto the recovery branch";
    fresh.isDetached = false;
    EXPECT_EQ(reasonInVerdict(before, fresh, false), std::nullopt) << "its branch stays";
    fresh.isDetached = true;
    EXPECT_EQ(reasonInVerdict(fresh, fresh, false), std::nullopt);
}

TEST(PreflightOfTheListing, FindsTheEntryOfThePath) {
    GitWorktreeEntry other;
    other.path = FilePath("/w2");
    GitWorktreeEntry mine;
    mine.path = FilePath("/x/../w/");
    EXPECT_EQ(entryOf(reviewed(), {other, mine}), mine);
    EXPECT_EQ(entryOf(reviewed(), {other}), std::nullopt);
    EXPECT_EQ(entryOf(reviewed(), {}), std::nullopt);
}

TEST(PreflightOfTheListing, TakesAnUnbornBranchForWhatItWas) {
    Worktree worktree = reviewed();
    worktree.headSHA = std::nullopt;
    GitWorktreeEntry entry = entryLike(worktree);
    for (const std::size_t length : {40U, 64U}) {
        entry.head = std::string(length, '0');
        EXPECT_EQ(objectionToListing(worktree, entry), std::nullopt);
    }
    entry.head = std::string(39, '0') + "1";
    EXPECT_EQ(objectionToListing(worktree, entry), "HEAD moved since the worktree was reviewed.");
}

TEST(PreflightOfTheListing, ObjectsInItsOrder) {
    const Worktree worktree = reviewed();
    GitWorktreeEntry entry = entryLike(worktree);
    EXPECT_EQ(objectionToListing(worktree, entry), std::nullopt);
    entry.branch = "other";
    EXPECT_EQ(objectionToListing(worktree, entry), "The branch changed since the worktree was reviewed.");
    entry.head = "def";
    EXPECT_EQ(objectionToListing(worktree, entry), "HEAD moved since the worktree was reviewed.");
    entry.isLocked = true;
    EXPECT_EQ(objectionToListing(worktree, entry), "The worktree is locked.");
    entry.lockReason = "on a stick";
    EXPECT_EQ(objectionToListing(worktree, entry), "The worktree is locked: on a stick");
    entry.isMain = true;
    EXPECT_EQ(objectionToListing(worktree, entry), "Git reports this as the main worktree.");
    EXPECT_EQ(objectionToListing(worktree, std::nullopt), "Git no longer lists this worktree.");
}

TEST(PreflightOfTheListing, ComparesWhatIsAbsent) {
    Worktree worktree = reviewed();
    worktree.branch = std::nullopt;
    GitWorktreeEntry entry = entryLike(worktree);
    EXPECT_EQ(objectionToListing(worktree, entry), std::nullopt) << "detached both times";
    entry.branch = "feature";
    EXPECT_EQ(objectionToListing(worktree, entry), "The branch changed since the worktree was reviewed.");
    worktree.headSHA = std::nullopt;
    EXPECT_EQ(objectionToListing(worktree, entry), "HEAD moved since the worktree was reviewed.");
    entry = entryLike(worktree);
    EXPECT_EQ(objectionToListing(worktree, entry), std::nullopt);
}

TEST(PreflightOfTheState, ObjectsInItsOrder) {
    Worktree fresh = reviewed();
    EXPECT_EQ(objectionToState(fresh), std::nullopt);
    fresh.operationInProgress = GitOperationInProgress::cherryPick;
    EXPECT_EQ(objectionToState(fresh), "A cherry-pick is in progress.");
    fresh.status.conflictedCount = 1;
    EXPECT_EQ(objectionToState(fresh), "The worktree has unresolved merge conflicts.");
    fresh.isActive = true;
    EXPECT_EQ(objectionToState(fresh), "The worktree looks active.");
    fresh.activityReason = "An editor is open.";
    EXPECT_EQ(objectionToState(fresh), "An editor is open.");
}

TEST(PreflightOfTheState, NamesEachOperation) {
    using enum GitOperationInProgress;
    std::vector<std::string> sentences;
    for (const GitOperationInProgress operation : {merge, rebase, cherryPick, revert, bisect}) {
        Worktree fresh = reviewed();
        fresh.operationInProgress = operation;
        sentences.push_back(objectionToState(fresh).value_or(""));
    }
    EXPECT_THAT(sentences, ElementsAre("A merge is in progress.", "A rebase is in progress.",
                                       "A cherry-pick is in progress.", "A revert is in progress.",
                                       "A bisect is in progress."));
}

TEST(PreflightWarnings, ComeInTheirOrder) {
    Worktree fresh = reviewed();
    EXPECT_THAT(warningsAbout(fresh), IsEmpty());
    fresh.submodulesDirty = true;
    IgnoredEntry secret;
    secret.classification = IgnoredEntryClass::sensitive;
    IgnoredEntry built;
    built.classification = IgnoredEntryClass::rebuildable;
    fresh.ignoredEntries = {built, secret, secret};
    EXPECT_THAT(warningsAbout(fresh),
                ElementsAre("A submodule has uncommitted state; it will not be preserved.",
                            "Ignored files that look sensitive were found. Review them before continuing."));
    fresh.ignoredEntries = {built};
    fresh.submodulesDirty = false;
    EXPECT_THAT(warningsAbout(fresh), IsEmpty());
}

TEST(PreflightRemote, IsTheTrackedOneElseTheFirst) {
    Worktree worktree = reviewed();
    EXPECT_EQ(remoteName(worktree), std::nullopt);
    worktree.remotes = {{"a", "https://fetch.example/x", "https://push.example/x"},
                        {"b", "/local", "/local"}};
    EXPECT_EQ(remoteName(worktree), "a");
    worktree.tracking.remoteName = "b";
    EXPECT_EQ(remoteName(worktree), "b");
    EXPECT_EQ(pushHost(worktree, "a"), "push.example");
    EXPECT_EQ(pushHost(worktree, "b"), std::nullopt);
    EXPECT_EQ(pushHost(worktree, "c"), std::nullopt);
    EXPECT_EQ(unreachable("b"), "The remote b could not be reached.");
}

TEST(PreflightReport, OfAFailureHoldsOneSentence) {
    CleanupPreflightReport expected;
    expected.failures = {"No."};
    EXPECT_EQ(CleanupPreflightReport::failed("No."), expected);
    EXPECT_FALSE(expected.passed);
}

}  // namespace
}  // namespace cairnfield
