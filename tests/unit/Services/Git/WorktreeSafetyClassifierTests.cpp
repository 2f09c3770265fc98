#include "Services/Git/WorktreeSafetyClassifier.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using WorktreeSafetyClassifier::classify;
using WorktreeSafetyClassifier::largeIgnoredEntryBytes;

/// Nothing speaks for it and nothing against it.
Worktree unremarkable() {
    Worktree worktree;
    worktree.path = FilePath("/projects/app-feature");
    worktree.branch = "feature";
    worktree.headSHA = "0123456789012345678901234567890123456789";
    return worktree;
}

GitRemote remoteAt(const std::string& url) {
    return {"origin", url, url};
}

IgnoredEntry ignored(IgnoredEntryClass classification, std::int64_t bytes) {
    IgnoredEntry entry;
    entry.name = entry.relativePath = "thing";
    entry.sizeBytes = bytes;
    entry.classification = classification;
    return entry;
}

TEST(WorktreeSafetyClassifier, TakesWhatItKnowsNothingOfForUnverifiable) {
    EXPECT_EQ(classify(unremarkable()), WorktreeSafety::unsupportedRemote);
}

TEST(WorktreeSafetyClassifier, DoesNotLookAtThePresentVerdict) {
    Worktree worktree = unremarkable();
    worktree.safety = WorktreeSafety::cleanMerged;
    EXPECT_EQ(classify(worktree), WorktreeSafety::unsupportedRemote);
}

/// Each step adds a fact that outranks all facts before it, so every neighbouring pair of checks is put to
/// the test.
TEST(WorktreeSafetyClassifier, ChecksFromWhatStopsEverythingToWhatMerelyQualifies) {
    Worktree worktree = unremarkable();
    worktree.remotes = {remoteAt("git@github.com:owner/app.git")};
    EXPECT_EQ(classify(worktree), WorktreeSafety::manualReview);
    worktree.tracking.uniqueCommitCount = 0;
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanDisposable);
    worktree.tracking.headIsRemotelyPreserved = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::remotelyPreserved);
    worktree.tracking.reachableFromDefaultBranch = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanMerged);
    worktree.pullRequest = PullRequestInfo{};
    EXPECT_EQ(classify(worktree), WorktreeSafety::openPullRequest);
    worktree.ignoredEntries = {ignored(IgnoredEntryClass::unknown, largeIgnoredEntryBytes)};
    EXPECT_EQ(classify(worktree), WorktreeSafety::manualReview);
    worktree.ignoredEntries.push_back(ignored(IgnoredEntryClass::sensitive, 0));
    EXPECT_EQ(classify(worktree), WorktreeSafety::sensitiveIgnoredFiles);
    worktree.tracking.ahead = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::committedButUnpushed);
    worktree.isDetached = true;
    worktree.tracking.headIsRemotelyPreserved = false;
    EXPECT_EQ(classify(worktree), WorktreeSafety::detachedWithUniqueCommits);
    worktree.status.untrackedCount = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::untrackedChanges);
    worktree.status.modifiedCount = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::dirtyTrackedChanges);
    worktree.submodulesDirty = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::submoduleRequiresReview);
    worktree.operationInProgress = GitOperationInProgress::merge;
    EXPECT_EQ(classify(worktree), WorktreeSafety::mergeOrRebaseInProgress);
    worktree.status.conflictedCount = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::unresolvedConflicts);
    worktree.isLocked = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::activeOrLocked);
    worktree.isBare = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::bareRepository);
    worktree.isMain = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::mainWorktree);
    worktree.inspectionError = "cannot be read";
    EXPECT_EQ(classify(worktree), WorktreeSafety::inaccessible);
}

TEST(WorktreeSafetyClassifier, TakesAnActiveWorktreeLikeALockedOne) {
    Worktree worktree = unremarkable();
    worktree.isActive = true;
    worktree.status.conflictedCount = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::activeOrLocked);
}

TEST(WorktreeSafetyClassifier, CountsStagedChangesAsTrackedOnes) {
    Worktree worktree = unremarkable();
    worktree.status.stagedCount = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::dirtyTrackedChanges);
}

TEST(WorktreeSafetyClassifier, LetsADetachedHeadOnARemotePass) {
    Worktree worktree = unremarkable();
    worktree.isDetached = true;
    worktree.tracking.headIsRemotelyPreserved = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::remotelyPreserved);
    worktree.pullRequest = PullRequestInfo{};
    EXPECT_EQ(classify(worktree), WorktreeSafety::openPullRequest);
    worktree.pullRequest.reset();
    worktree.tracking.reachableFromDefaultBranch = true;
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanMerged);
}

TEST(WorktreeSafetyClassifier, AsksForAPersonFromExactlyTheLargeSizeOn) {
    Worktree worktree = unremarkable();
    worktree.tracking.uniqueCommitCount = 0;
    worktree.ignoredEntries = {ignored(IgnoredEntryClass::unknown, 268'435'455)};
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanDisposable);
    worktree.ignoredEntries[0].sizeBytes = 268'435'456;
    EXPECT_EQ(classify(worktree), WorktreeSafety::manualReview);
}

TEST(WorktreeSafetyClassifier, DoesNotAddUpUnknownEntries) {
    Worktree worktree = unremarkable();
    worktree.tracking.uniqueCommitCount = 0;
    worktree.ignoredEntries.assign(3, ignored(IgnoredEntryClass::unknown, 200'000'000));
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanDisposable);
}

TEST(WorktreeSafetyClassifier, IgnoresRebuildableEntriesOfAnySize) {
    Worktree worktree = unremarkable();
    worktree.tracking.uniqueCommitCount = 0;
    worktree.ignoredEntries = {ignored(IgnoredEntryClass::rebuildable, 10 * largeIgnoredEntryBytes)};
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanDisposable);
}

TEST(WorktreeSafetyClassifier, DoesNotAskWhetherThePullRequestIsStillOpen) {
    for (const PullRequestState state : {PullRequestState::open, PullRequestState::merged,
                                         PullRequestState::closed, PullRequestState::draft}) {
        Worktree worktree = unremarkable();
        worktree.tracking.headIsRemotelyPreserved = true;
        worktree.pullRequest = PullRequestInfo{.state = state};
        EXPECT_EQ(classify(worktree), WorktreeSafety::openPullRequest) << rawValue(state);
    }
}

TEST(WorktreeSafetyClassifier, GivesNothingForAPullRequestWhoseCommitsAreNotOnARemote) {
    Worktree worktree = unremarkable();
    worktree.pullRequest = PullRequestInfo{};
    EXPECT_EQ(classify(worktree), WorktreeSafety::unsupportedRemote);
}

TEST(WorktreeSafetyClassifier, FindsAFreshBranchWithoutAnyRemoteDisposable) {
    Worktree worktree = unremarkable();
    worktree.tracking.baseRef = "main";
    worktree.tracking.uniqueCommitCount = 0;
    EXPECT_EQ(classify(worktree), WorktreeSafety::cleanDisposable);
}

TEST(WorktreeSafetyClassifier, NeverTakesUniqueOrUncountedCommitsForDisposable) {
    Worktree worktree = unremarkable();
    worktree.tracking.uniqueCommitCount = 1;
    EXPECT_EQ(classify(worktree), WorktreeSafety::unsupportedRemote);
    worktree.tracking.uniqueCommitCount.reset();
    EXPECT_EQ(classify(worktree), WorktreeSafety::unsupportedRemote);
}

TEST(WorktreeSafetyClassifier, AsksForAPersonWhereTheRemoteCanBeWorkedWith) {
    const auto verdictWith = [](std::vector<GitRemote> remotes) {
        Worktree worktree = unremarkable();
        worktree.remotes = std::move(remotes);
        return classify(worktree);
    };
    const GitRemote selfHosted = remoteAt("https://github.example.org/owner/app.git");
    const GitRemote elsewhere = remoteAt("git@git.example.org:owner/app.git");
    const GitRemote withoutHost = remoteAt("/srv/git/github/app.git");
    EXPECT_EQ(verdictWith({selfHosted}), WorktreeSafety::manualReview);
    EXPECT_EQ(verdictWith({elsewhere}), WorktreeSafety::unsupportedRemote);
    EXPECT_EQ(verdictWith({withoutHost}), WorktreeSafety::unsupportedRemote);
    EXPECT_EQ(verdictWith({withoutHost, elsewhere, selfHosted}), WorktreeSafety::manualReview);
}

TEST(WorktreeSafetyClassifier, JudgesARemoteByWhereItPushesTo) {
    Worktree worktree = unremarkable();
    worktree.remotes = {{"origin", "git@github.com:owner/app.git", "git@git.example.org:owner/app.git"}};
    EXPECT_EQ(classify(worktree), WorktreeSafety::unsupportedRemote);
}

}  // namespace
}  // namespace cairnfield
