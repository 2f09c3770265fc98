#include "Services/Cleanup/CleanupChoices.h"
#include "unit/Services/Cleanup/IgnoredEntryAt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CleanupChoicesTest : public testing::Test {
protected:
    CleanupChoicesTest() {
        Worktree worktree;
        worktree.status.changedPaths = {"changed"};
        worktree.status.untrackedPaths = {"new", "newer"};
        IgnoredEntry folder = ignored("secrets", 10, IgnoredEntryClass::sensitive);
        folder.isDirectory = true;
        worktree.ignoredEntries = {large, folder, ignored("build", 50, IgnoredEntryClass::rebuildable),
                                   ignored("notes", 5, IgnoredEntryClass::unknown), small};
        plan = CleanupPlan::makeDefault(
            worktree,
            {.createDraftPullRequests = true, .preserveSmallLocalFiles = true, .maxVaultFileBytes = 100});
    }

    const IgnoredEntry small = ignored(".env", 1, IgnoredEntryClass::sensitive);
    const IgnoredEntry large = ignored("large.pem", 1'000'000, IgnoredEntryClass::sensitive);
    CleanupPlan plan;
};

TEST_F(CleanupChoicesTest, ProposesWhatThePlanSays) {
    plan.commitMessage = "keep";
    EXPECT_EQ(CleanupChoices::proposed(plan), (CleanupChoices{true, true, true, "keep"}));
    plan.createPullRequest = false;
    EXPECT_FALSE(CleanupChoices::proposed(plan).createPullRequest);
}

TEST_F(CleanupChoicesTest, ChangesNothingElseInThePlan) {
    CleanupPlan chosen = applied(plan, {false, false, false, "mine"}, true);
    EXPECT_NE(chosen, plan);
    chosen.untrackedPathsToCommit = plan.untrackedPathsToCommit;
    chosen.filesToArchive = plan.filesToArchive;
    chosen.createPullRequest = plan.createPullRequest;
    chosen.commitMessage = plan.commitMessage;
    EXPECT_EQ(chosen, plan);
}

TEST_F(CleanupChoicesTest, CommitsUntrackedFilesWhenTheyAreIncluded) {
    EXPECT_THAT(applied(plan, {.includeUntracked = false}, true).untrackedPathsToCommit, IsEmpty());
    EXPECT_THAT(applied(plan, {.includeUntracked = false}, true).trackedPathsToCommit,
                ElementsAre("changed"));
    plan.untrackedPathsToCommit.clear();
    EXPECT_THAT(applied(plan, {.includeUntracked = true}, true).untrackedPathsToCommit,
                ElementsAre("new", "newer"))
        << "as the worktree has them, whatever the plan said";
}

TEST_F(CleanupChoicesTest, ArchivesEverySensitiveFileOfAnySizeButNoDirectory) {
    EXPECT_THAT(plan.filesToArchive, ElementsAre(small)) << "what the settings proposed";
    EXPECT_THAT(applied(plan, {.includeSensitiveInVault = true}, true).filesToArchive,
                ElementsAre(large, small));
    EXPECT_THAT(applied(plan, {.includeSensitiveInVault = false}, true).filesToArchive, IsEmpty());
}

TEST_F(CleanupChoicesTest, ArchivesWhatWasSeenBelowTheTopAsFarAsTheVaultTakesIt) {
    const IgnoredEntry fits = ignored("a/.env", 100, IgnoredEntryClass::sensitive);
    const IgnoredEntry tooLarge = ignored("b/.env", 101, IgnoredEntryClass::sensitive);
    plan.nested = {.seen = {fits, tooLarge}, .maximumFileBytes = 100};
    const CleanupPlan kept = applied(plan, {.includeSensitiveInVault = false}, true);
    EXPECT_THAT(kept.nested.seen, ElementsAre(fits, tooLarge));
    EXPECT_THAT(kept.nested.toArchive, ElementsAre(fits));
    EXPECT_THAT(kept.filesToArchive, IsEmpty());
    EXPECT_THAT(kept.allFilesToArchive(), ElementsAre(fits));
    EXPECT_THAT(applied(kept, {}, true).allFilesToArchive(), ElementsAre(large, small, fits));
    const CleanupPlan left = applied(kept, {.includeNestedInVault = false}, true);
    EXPECT_THAT(left.nested.toArchive, IsEmpty());
    EXPECT_THAT(left.filesToArchive, ElementsAre(large, small)) << "each switch has its own files";
}

TEST_F(CleanupChoicesTest, OpensAPullRequestOnlyWhenItIsWantedAndSomeoneIsSignedIn) {
    EXPECT_TRUE(applied(plan, {.createPullRequest = true}, true).createPullRequest);
    EXPECT_FALSE(applied(plan, {.createPullRequest = true}, false).createPullRequest);
    EXPECT_FALSE(applied(plan, {.createPullRequest = false}, true).createPullRequest);
    plan.createPullRequest = false;
    EXPECT_TRUE(applied(plan, {.createPullRequest = true}, true).createPullRequest)
        << "the choice counts, not the plan";
}

TEST_F(CleanupChoicesTest, TakesTheMessageAsItStands) {
    EXPECT_EQ(applied(plan, {.commitMessage = " two\nlines "}, true).commitMessage, " two\nlines ");
    EXPECT_EQ(applied(plan, {.commitMessage = ""}, true).commitMessage, "");
}

}  // namespace
}  // namespace cairnfield
