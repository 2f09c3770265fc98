#include "Services/Cleanup/CleanupPlan.h"
#include "unit/Services/Cleanup/IgnoredEntryAt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CleanupPlanTest : public testing::Test {
protected:
    CleanupPlanTest() {
        worktree.path = FilePath("/home/me/app-feature");
        worktree.repositoryName = "my app";
        worktree.tracking.uniqueCommitCount = 0;
        settings.preserveSmallLocalFiles = true;
        settings.maxVaultFileBytes = 100;
        settings.retentionDays = 90;
        settings.now = *dateFromISO8601("2026-01-31T17:45:02Z");
    }
    [[nodiscard]] CleanupPlan plan() const { return CleanupPlan::makeDefault(worktree, settings); }

    Worktree worktree;
    PlanDefaults settings;
};

TEST_F(CleanupPlanTest, TakesItsPartsFromTheWorktreeAndTheSettings) {
    worktree.status.changedPaths = {"b", "a"};
    worktree.status.untrackedPaths = {"z", "y"};
    worktree.tracking.defaultBranch = "main";
    settings.createDraftPullRequests = true;
    settings.recoveryBranchPrefix = "keep";
    const CleanupPlan made = plan();
    EXPECT_EQ(made.worktree, worktree);
    EXPECT_THAT(made.trackedPathsToCommit, ElementsAre("b", "a"));
    EXPECT_THAT(made.untrackedPathsToCommit, ElementsAre("z", "y"));
    EXPECT_EQ(made.commitMessage, "chore(cairnfield): preserve worktree before cleanup");
    EXPECT_EQ(made.recoveryBranch, "keep/my-app/20260131-174502");
    EXPECT_EQ(made.baseBranch, "main");
    EXPECT_TRUE(made.createPullRequest);
    EXPECT_EQ(made.retentionDays, 90);
}

TEST_F(CleanupPlanTest, ArchivesTheSensitiveFilesThatFit) {
    IgnoredEntry folder = ignored("secrets", 10, IgnoredEntryClass::sensitive);
    folder.isDirectory = true;
    const IgnoredEntry exact = ignored("exact.pem", 100, IgnoredEntryClass::sensitive);
    const IgnoredEntry large = ignored("large.pem", 101, IgnoredEntryClass::sensitive);
    const IgnoredEntry small = ignored(".env", 1, IgnoredEntryClass::sensitive);
    worktree.ignoredEntries = {folder,
                               large,
                               ignored("node_modules", 50, IgnoredEntryClass::rebuildable),
                               exact,
                               ignored("notes", 5, IgnoredEntryClass::unknown),
                               small};
    EXPECT_THAT(plan().filesToArchive, ElementsAre(exact, small));
    EXPECT_THAT(plan().excludedSensitiveFiles, ElementsAre(folder, large, exact, small))
        << "all of them, the archived ones too";
    EXPECT_FALSE(plan().requiresPreservation()) << "archiving needs no remote";
    settings.preserveSmallLocalFiles = false;
    EXPECT_THAT(plan().filesToArchive, IsEmpty());
    EXPECT_THAT(plan().excludedSensitiveFiles, ElementsAre(folder, large, exact, small));
}

TEST_F(CleanupPlanTest, PushesToTheTrackedRemoteElseToTheFirst) {
    EXPECT_EQ(plan().remoteName, std::nullopt);
    worktree.remotes = {{"first", "u", "u"}, {"second", "u", "u"}};
    EXPECT_EQ(plan().remoteName, "first");
    worktree.tracking.remoteName = "second";
    EXPECT_EQ(plan().remoteName, "second");
    worktree.tracking.remoteName = "elsewhere";
    EXPECT_EQ(plan().remoteName, "elsewhere") << "whether or not it is listed";
}

TEST_F(CleanupPlanTest, NeedsPreservationForAnyPathToCommit) {
    worktree.tracking.headIsRemotelyPreserved = true;
    worktree.status.changedPaths = {"a"};
    EXPECT_TRUE(plan().requiresPreservation());
    worktree.status.changedPaths.clear();
    worktree.status.untrackedPaths = {"a"};
    EXPECT_TRUE(plan().requiresPreservation());
    CleanupPlan without = plan();
    without.untrackedPathsToCommit.clear();
    EXPECT_FALSE(without.requiresPreservation()) << "it is the plan that counts";
}

TEST_F(CleanupPlanTest, NeedsPreservationAheadOfTheUpstream) {
    worktree.tracking.headIsRemotelyPreserved = true;
    worktree.tracking.ahead = 1;
    EXPECT_TRUE(plan().requiresPreservation());
}

TEST_F(CleanupPlanTest, NeedsPreservationDetachedAtWhatNoRemoteHas) {
    worktree.isDetached = true;
    EXPECT_TRUE(plan().requiresPreservation());
    worktree.tracking.headIsRemotelyPreserved = true;
    EXPECT_FALSE(plan().requiresPreservation());
}

TEST_F(CleanupPlanTest, NeedsNoPreservationWithoutUniqueCommits) {
    for (const bool preserved : {false, true}) {
        worktree.tracking.headIsRemotelyPreserved = preserved;
        worktree.tracking.uniqueCommitCount = 0;
        EXPECT_FALSE(plan().requiresPreservation());
        worktree.tracking.uniqueCommitCount = std::nullopt;
        EXPECT_FALSE(plan().requiresPreservation());
    }
}

TEST_F(CleanupPlanTest, NeedsPreservationForUniqueCommitsThatNoRemoteHas) {
    worktree.tracking.uniqueCommitCount = 1;
    EXPECT_TRUE(plan().requiresPreservation());
    worktree.tracking.headIsRemotelyPreserved = true;
    EXPECT_FALSE(plan().requiresPreservation());
}

}  // namespace
}  // namespace cairnfield
