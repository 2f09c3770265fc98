#include "Features/Worktrees/WorktreeDetailText.h"
#include "SampleWorktrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

WorktreeDetailText detail(const Worktree& worktree, SizeKnowledge knowledge = SizeKnowledge::known) {
    return detailText(worktree, knowledge, sampleNow);
}

TEST(WorktreeDetailText, OpensWithTheBranchThePathAndTheVerdict) {
    const WorktreeDetailText text =
        detail(worktree({.branch = "fix", .safety = WorktreeSafety::committedButUnpushed}));
    EXPECT_EQ(text.branch, "fix");
    EXPECT_EQ(text.path, "/code/atlas/fix");
    EXPECT_EQ(text.disposition, SafetyDisposition::preserveFirst);
    EXPECT_EQ(text.explanation, "It has commits that exist only on this Mac.");
    EXPECT_THAT(text.notes, IsEmpty());
}

TEST(WorktreeDetailText, TellsWhyItIsActiveAndWhyItCouldNotBeRead) {
    Worktree busy = worktree({});
    busy.activityReason = "An editor has it open";
    EXPECT_THAT(detail(busy).notes, IsEmpty()) << "the reason alone does not make it active";
    busy.isActive = true;
    busy.inspectionError = "not a\tgit repository";
    EXPECT_THAT(detail(busy).notes,
                ElementsAre(SymbolText{"person.fill.checkmark", "An editor has it open"},
                            SymbolText{"exclamationmark.triangle", "not a␉git repository"}));
}

TEST(WorktreeDetailText, ListsTheGitStateInItsOrder) {
    Worktree full = worktree({.branch = "fix", .size = 3'000'000});
    full.status = {.stagedCount = 2, .modifiedCount = 1, .untrackedCount = 4, .conflictedCount = 3};
    full.operationInProgress = GitOperationInProgress::cherryPick;
    full.source = WorktreeSource::claude;
    EXPECT_THAT(detail(full).gitState,
                ElementsAre(LabelledText{"Branch", "fix"},
                            LabelledText{"HEAD", "0123456789abcdef0123456789abcdef01234567", true},
                            LabelledText{"Tracked changes", "1"}, LabelledText{"Staged", "2"},
                            LabelledText{"Untracked files", "4"}, LabelledText{"Conflicts", "3"},
                            LabelledText{"In progress", "cherry-pick"}, LabelledText{"Size", "3 MB"},
                            LabelledText{"Last activity", "5 min. ago"}, LabelledText{"Source", "Claude"}));
}

TEST(WorktreeDetailText, LeavesOutWhatDoesNotApply) {
    Worktree bare = worktree({});
    bare.branch.reset();
    bare.headSHA.reset();
    bare.isBare = true;
    bare.source = WorktreeSource::unknown;
    EXPECT_THAT(detail(bare, SizeKnowledge::awaited).gitState,
                ElementsAre(LabelledText{"Branch", "bare"}, LabelledText{"Tracked changes", "0"},
                            LabelledText{"Staged", "0"}, LabelledText{"Untracked files", "0"},
                            LabelledText{"Size", "—"}, LabelledText{"Last activity", "5 min. ago"},
                            LabelledText{"Source", "Unknown"}));
}

TEST(WorktreeDetailText, NamesEveryUnfinishedOperation) {
    const std::vector<std::pair<GitOperationInProgress, std::string>> words{
        {GitOperationInProgress::merge, "merge"},
        {GitOperationInProgress::rebase, "rebase"},
        {GitOperationInProgress::cherryPick, "cherry-pick"},
        {GitOperationInProgress::revert, "revert"},
        {GitOperationInProgress::bisect, "bisect"}};
    for (const auto& [operation, word] : words) {
        Worktree unfinished = worktree({});
        unfinished.operationInProgress = operation;
        EXPECT_THAT(detail(unfinished).gitState, Contains(LabelledText{"In progress", word}));
    }
}

TEST(WorktreeDetailText, ListsIgnoredFilesWithTheWayBackWhereThereIsOne) {
    Worktree holding = worktree({});
    EXPECT_THAT(detail(holding).ignored, IsEmpty());
    holding.ignoredEntries = {
        {.name = "node_modules",
         .isDirectory = true,
         .sizeBytes = 400'000'000,
         .classification = IgnoredEntryClass::rebuildable},
        {.name = ".env", .sizeBytes = 1'000, .classification = IgnoredEntryClass::sensitive},
        {.name = "notes", .isDirectory = true, .classification = IgnoredEntryClass::unknown}};
    const auto& rows = detail(holding).ignored;
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].name, "node_modules");
    EXPECT_EQ(rows[0].size, "400 MB");
    EXPECT_EQ(rows[0].classification, "Rebuildable");
    EXPECT_TRUE(rows[0].rebuildHint.starts_with("Rebuilt by ") && rows[0].rebuildHint.ends_with("."))
        << rows[0].rebuildHint;
    EXPECT_TRUE(rows[0].isDirectory);
    EXPECT_EQ(rows[1], (IgnoredEntryText{".env", "1 kB", "Sensitive", "", false}));
    EXPECT_EQ(rows[2], (IgnoredEntryText{"notes", "0 kB", "Unknown", "", true}));
    EXPECT_EQ(ignoredFilesNotice, "Removing the worktree deletes these too. They are not in Git.");
}

TEST(WorktreeDetailText, SaysThatWithoutARemoteNothingCanBePushed) {
    const WorktreeDetailText text = detail(worktree({}));
    EXPECT_EQ(text.remoteMessage,
              "This repository has no remote, so nothing here can be preserved by pushing.");
    EXPECT_THAT(text.remote, IsEmpty());
}

TEST(WorktreeDetailText, ListsTheRemoteInItsOrder) {
    Worktree pushed = worktree({});
    pushed.remotes = {{"origin", "git@host:a/b", "git@host:a/b"}};
    EXPECT_THAT(detail(pushed).remote, ElementsAre(LabelledText{"Ahead / behind", "0 / 0"},
                                                   LabelledText{"Commits on the remote", "Not verified"}));
    pushed.tracking = {.upstreamBranch = "origin/fix",
                       .ahead = 2,
                       .behind = 5,
                       .headIsRemotelyPreserved = true,
                       .defaultBranch = "main"};
    pushed.pullRequest = PullRequestInfo{.number = 12, .state = PullRequestState::merged};
    const WorktreeDetailText text = detail(pushed);
    EXPECT_EQ(text.remoteMessage, "");
    EXPECT_THAT(
        text.remote,
        ElementsAre(LabelledText{"Upstream", "origin/fix"}, LabelledText{"Ahead / behind", "2 / 5"},
                    LabelledText{"Default branch", "main"}, LabelledText{"Commits on the remote", "Yes"},
                    LabelledText{"Pull request", "#12 Merged"}));
}

TEST(CleanupSection, OffersNothingForWhatIsNeverRemoved) {
    for (const WorktreeSafety safety :
         {WorktreeSafety::mainWorktree, WorktreeSafety::bareRepository, WorktreeSafety::inaccessible}) {
        const CleanupSectionText text = cleanupSectionText(worktree({.safety = safety}));
        EXPECT_EQ(text.message, (SymbolText{"lock", std::string(explanation(safety))}));
        EXPECT_FALSE(text.offersCleanup);
        EXPECT_EQ(text.note, "");
    }
}

TEST(CleanupSection, AsksToFinishWhatIsInProgress) {
    for (const WorktreeSafety safety :
         {WorktreeSafety::activeOrLocked, WorktreeSafety::mergeOrRebaseInProgress,
          WorktreeSafety::unresolvedConflicts}) {
        const CleanupSectionText text = cleanupSectionText(worktree({.safety = safety}));
        EXPECT_EQ(text.message,
                  (SymbolText{"hand.raised", "Finish what is in progress here, then refresh."}));
        EXPECT_FALSE(text.offersCleanup);
    }
}

TEST(CleanupSection, OffersToCleanEverythingElse) {
    for (const WorktreeSafety safety :
         {WorktreeSafety::cleanDisposable, WorktreeSafety::cleanMerged, WorktreeSafety::remotelyPreserved,
          WorktreeSafety::openPullRequest, WorktreeSafety::committedButUnpushed,
          WorktreeSafety::dirtyTrackedChanges, WorktreeSafety::untrackedChanges,
          WorktreeSafety::detachedWithUniqueCommits, WorktreeSafety::sensitiveIgnoredFiles,
          WorktreeSafety::submoduleRequiresReview, WorktreeSafety::unsupportedRemote,
          WorktreeSafety::manualReview}) {
        const CleanupSectionText text = cleanupSectionText(worktree({.safety = safety}));
        EXPECT_TRUE(text.offersCleanup);
        EXPECT_TRUE(text.isCleanupEnabled);
        EXPECT_EQ(text.note, "");
        EXPECT_EQ(
            text.message,
            (SymbolText{
                "",
                "Cairnfield will preserve this work on a recovery branch before removing the worktree."}));
    }
}

TEST(CleanupSection, SaysWhenTheCommitsAreOnTheRemoteAlready) {
    Worktree preserved = worktree({.safety = WorktreeSafety::remotelyPreserved});
    preserved.tracking.headIsRemotelyPreserved = true;
    EXPECT_EQ(
        cleanupSectionText(preserved).message.text,
        "Your commits already exist on the remote. Cairnfield will verify that before removing anything.");
}

TEST(CleanupSection, KeepsThePinnedWorktreeWithItsTextANoteAndADisabledButton) {
    const CleanupSectionText text = cleanupSectionText(worktree({.isPinned = true}));
    EXPECT_EQ(text.message.text,
              "Cairnfield will preserve this work on a recovery branch before removing the worktree.");
    EXPECT_EQ(text.note, "Unpin this worktree to clean it.");
    EXPECT_TRUE(text.offersCleanup);
    EXPECT_FALSE(text.isCleanupEnabled);
}

TEST(WorktreeDetailText, OffersTheOppositeOfThePin) {
    EXPECT_EQ(detail(worktree({})).pinTitle, "Pin");
    EXPECT_EQ(detail(worktree({.isPinned = true})).pinTitle, "Unpin");
}

TEST(WorktreeDetailText, MakesHostileTextsSafeToLookAt) {
    Worktree hostile = worktree({.branch = "x\u202Egnp"});
    hostile.ignoredEntries = {{.name = "a\rb"}};
    hostile.remotes = {{"origin", "", ""}};
    hostile.tracking.upstreamBranch = "o\x01p";
    const WorktreeDetailText text = detail(hostile);
    EXPECT_EQ(text.branch, "x\uFFFDgnp");
    EXPECT_EQ(text.ignored[0].name, "a␍b");
    EXPECT_THAT(text.remote, Contains(LabelledText{"Upstream", "o␁p"}));
}

}  // namespace
}  // namespace cairnfield
