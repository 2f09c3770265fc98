#include "Models/ProjectUsage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

Worktree worktree(const std::string& root, const std::string& name, std::int64_t size,
                  WorktreeSafety safety = WorktreeSafety::cleanMerged) {
    Worktree made;
    made.path = FilePath(root + "/" + name);
    made.repositoryRoot = FilePath(root);
    made.repositoryName = FilePath(root).lastComponent();
    made.sizeBytes = size;
    made.safety = safety;
    return made;
}

Worktree mainWorktree(const std::string& root, std::int64_t size) {
    Worktree made = worktree(root, "", size, WorktreeSafety::mainWorktree);
    made.isMain = true;
    return made;
}

std::vector<std::string> namesOf(const std::vector<ProjectUsage>& projects) {
    std::vector<std::string> names;
    for (const ProjectUsage& project : projects) names.push_back(project.name);
    return names;
}

std::vector<std::string> pathsOf(const ProjectUsage& project) {
    std::vector<std::string> paths;
    for (const Worktree& each : project.worktrees) paths.push_back(each.path.bytes());
    return paths;
}

TEST(RollUp, OfNothingIsNothing) {
    EXPECT_THAT(ProjectUsage::rollUp({}), IsEmpty());
}

TEST(RollUp, PutsTheMainWorktreeFirstAndTheLargestNext) {
    const auto projects = ProjectUsage::rollUp({worktree("/r", "small", 1), worktree("/r", "large", 9),
                                                mainWorktree("/r", 0), worktree("/r", "same", 1)});
    ASSERT_EQ(projects.size(), 1U);
    EXPECT_THAT(pathsOf(projects[0]), ElementsAre("/r/", "/r/large", "/r/small", "/r/same"));
}

TEST(RollUp, TakesTwoSpellingsOfARootForOneProject) {
    const auto projects = ProjectUsage::rollUp({worktree("/r/", "a", 1), worktree("/r", "b", 2)});
    ASSERT_EQ(projects.size(), 1U);
    EXPECT_EQ(projects[0].repositoryRoot, FilePath("/r")) << "that of the first of the sorted worktrees";
    EXPECT_EQ(projects[0].id(), FilePath("/r"));
    EXPECT_EQ(projects[0].worktreeCount(), 2);
}

TEST(RollUp, SortsProjectsBySizeThenByNameIgnoringCase) {
    const auto projects = ProjectUsage::rollUp({worktree("/x/beta", "w", 5), worktree("/x/Alpha", "w", 5),
                                                worktree("/x/zulu", "w", 9), worktree("/x/alpine", "w", 5)});
    EXPECT_THAT(namesOf(projects), ElementsAre("zulu", "Alpha", "alpine", "beta"));
}

TEST(RollUp, KeepsTheOrderOfEqualProjects) {
    const auto projects = ProjectUsage::rollUp({worktree("/b/name", "w", 5), worktree("/a/Name", "w", 5)});
    EXPECT_THAT(namesOf(projects), ElementsAre("name", "Name"));
}

TEST(ProjectUsage, CountsItsWorktrees) {
    ProjectUsage project;
    project.worktrees = {mainWorktree("/r", 100), worktree("/r", "a", 10), worktree("/r", "b", 1)};
    EXPECT_EQ(project.totalBytes(), 111);
    EXPECT_EQ(project.worktreeCount(), 3);
    EXPECT_EQ(project.linkedWorktreeCount(), 2);
    EXPECT_EQ(ProjectUsage().totalBytes(), 0);
}

TEST(ProjectUsage, CountsWhatNeedsAttention) {
    ProjectUsage project;
    project.worktrees = {worktree("/r", "a", 1, WorktreeSafety::dirtyTrackedChanges),
                         worktree("/r", "b", 1, WorktreeSafety::sensitiveIgnoredFiles),
                         worktree("/r", "c", 1, WorktreeSafety::cleanMerged),
                         worktree("/r", "d", 1, WorktreeSafety::activeOrLocked),
                         worktree("/r", "e", 1, WorktreeSafety::inaccessible)};
    EXPECT_EQ(project.needsAttentionCount(), 2);
}

TEST(ProjectUsage, ReclaimsOnlyWhatIsSafeLinkedAndUnpinned) {
    Worktree pinned = worktree("/r", "pinned", 1000);
    pinned.isPinned = true;
    Worktree safeMain = worktree("/r", "", 10'000);
    safeMain.isMain = true;
    ProjectUsage project;
    project.worktrees = {safeMain, pinned, worktree("/r", "a", 1, WorktreeSafety::cleanDisposable),
                         worktree("/r", "b", 10, WorktreeSafety::remotelyPreserved),
                         worktree("/r", "c", 100, WorktreeSafety::manualReview)};
    EXPECT_EQ(project.reclaimableBytes(), 11);
}

TEST(ProjectUsage, KnowsItsNewestActivity) {
    ProjectUsage project;
    project.worktrees = {worktree("/r", "a", 1), worktree("/r", "b", 1), worktree("/r", "c", 1)};
    EXPECT_EQ(project.lastActivity(), std::nullopt);
    project.worktrees[0].lastActivity = Date(5s);
    project.worktrees[2].lastActivity = Date(9s);
    EXPECT_EQ(project.lastActivity(), Date(9s));
}

TEST(ProjectUsage, IsFullySizedWhenNoWorktreeWaits) {
    ProjectUsage project;
    EXPECT_TRUE(project.isFullySized());
    project.worktrees = {worktree("/r", "a", 1), worktree("/r", "b", 0)};
    EXPECT_FALSE(project.isFullySized());
    project.worktrees[1].sizeBytes = 4096;
    EXPECT_TRUE(project.isFullySized());
}

TEST(ProjectUsage, WaitsForNoSizeOfWhatCannotBeEntered) {
    ProjectUsage project;
    Worktree prunable = worktree("/r", "gone", 0);
    prunable.isPrunable = true;
    Worktree broken = worktree("/r", "broken", 0);
    broken.inspectionError = "no";
    project.worktrees = {worktree("/r", "a", 1), prunable, broken,
                         worktree("/r", "closed", 0, WorktreeSafety::inaccessible)};
    EXPECT_TRUE(project.isFullySized());
}

}  // namespace
}  // namespace cairnfield
