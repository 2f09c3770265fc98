#include "Features/Worktrees/ListedWorktrees.h"
#include "Features/Worktrees/WorktreeGrouping.h"
#include "SampleWorktrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WorktreeGroupingTest : public testing::Test {
protected:
    void list(std::vector<Worktree> worktrees) {
        worktrees_ = std::move(worktrees);
        listed_.update(worktrees_, std::nullopt);
    }

    // The shown branches, each section as one line that begins with its first worktree's repository.
    std::vector<std::string> shown(const WorktreeQuery& query) const {
        std::vector<std::string> lines;
        for (const WorktreeSection& section :
             sections(listed_.all(), filtered(listed_.all(), query), query.grouping)) {
            std::string line;
            for (const std::uint32_t member : section.members) {
                const Worktree& worktree = listed_.all()[member].worktree;
                line +=
                    (line.empty() ? worktree.repositoryName + ":" : std::string()) + " " + *worktree.branch;
            }
            lines.push_back(line);
        }
        return lines;
    }

    std::vector<Worktree> worktrees_;
    ListedWorktrees listed_;
};

TEST_F(WorktreeGroupingTest, PutsTheLargestProjectFirstAndItsMainWorktreeOnTop) {
    list({worktree({.repository = "small", .branch = "a", .size = 5}),
          worktree({.repository = "large", .branch = "b", .size = 9}),
          worktree({.repository = "large", .branch = "c", .size = 2, .isMain = true}),
          worktree({.repository = "large", .branch = "d", .size = 30})});
    EXPECT_THAT(shown({}), ElementsAre("large: c d b", "small: a"));
}

TEST_F(WorktreeGroupingTest, OrdersEqualProjectsByNameWhateverTheCase) {
    list({worktree({.repository = "beta", .branch = "a"}), worktree({.repository = "Alpha", .branch = "b"})});
    EXPECT_THAT(shown({}), ElementsAre("Alpha: b", "beta: a"));
}

TEST_F(WorktreeGroupingTest, TakesRootsThatDifferInATrailingSlashForOneProject) {
    Worktree slashed = worktree({.branch = "b"});
    slashed.repositoryRoot = FilePath("/code/atlas/");
    list({worktree({.branch = "a"}), slashed});
    EXPECT_THAT(shown({}), ElementsAre("atlas: a b"));
}

TEST_F(WorktreeGroupingTest, AgreesWithTheRollUpOfTheModel) {
    std::mt19937 random(11);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    std::vector<Worktree> worktrees;
    for (int count = 0; count < 400; ++count) {
        worktrees.push_back(worktree({.repository = (count % 2 == 0 ? "P" : "p") + std::to_string(upTo(60)),
                                      .branch = "b" + std::to_string(count),
                                      .size = upTo(3),
                                      .safety = static_cast<WorktreeSafety>(upTo(17)),
                                      .isMain = upTo(9) == 0,
                                      .isPinned = upTo(5) == 0}));
    }
    list(worktrees);
    const std::vector<ProjectUsage> projects = ProjectUsage::rollUp(worktrees);
    const auto ours = sections(listed_.all(), filtered(listed_.all(), {}), WorktreeGrouping::project);
    ASSERT_EQ(ours.size(), projects.size());
    for (std::size_t project = 0; project < projects.size(); ++project) {
        ProjectTotals totals;
        std::vector<Worktree> members;
        for (const std::uint32_t member : ours[project].members) {
            members.push_back(listed_.all()[member].worktree);
            totals.add(members.back());
        }
        EXPECT_EQ(members, projects[project].worktrees);
        EXPECT_EQ(totals.totalBytes, projects[project].totalBytes());
        EXPECT_EQ(totals.worktreeCount, projects[project].worktreeCount());
        EXPECT_EQ(totals.linkedWorktreeCount, projects[project].linkedWorktreeCount());
        EXPECT_EQ(totals.reclaimableBytes, projects[project].reclaimableBytes());
        EXPECT_EQ(totals.needsAttentionCount, projects[project].needsAttentionCount());
    }
}

TEST_F(WorktreeGroupingTest, OrdersTheDispositionsByRankAndLeavesOutThoseWithoutAWorktree) {
    list({worktree({.repository = "locked", .branch = "a", .safety = WorktreeSafety::mainWorktree}),
          worktree({.repository = "used", .branch = "b", .safety = WorktreeSafety::activeOrLocked}),
          worktree({.repository = "unclear", .branch = "c", .safety = WorktreeSafety::manualReview}),
          worktree({.repository = "safe", .branch = "small", .size = 1}),
          worktree({.repository = "other", .branch = "large", .size = 2, .isMain = true}),
          worktree({.repository = "first", .branch = "d", .safety = WorktreeSafety::untrackedChanges})});
    EXPECT_THAT(shown({.grouping = WorktreeGrouping::safety}),
                ElementsAre("other: large small", "first: d", "unclear: c", "used: b", "locked: a"));
}

TEST_F(WorktreeGroupingTest, FindsBranchesNamesAndPathsWhateverTheCase) {
    list({worktree({.repository = "atlas", .branch = "Feature/LOGIN"}),
          worktree({.repository = "Zephyr", .branch = "fix"})});
    EXPECT_THAT(shown({.searchText = "login"}), ElementsAre("atlas: Feature/LOGIN"));
    EXPECT_THAT(shown({.searchText = "zEPH"}), ElementsAre("Zephyr: fix"));
    EXPECT_THAT(shown({.searchText = "CODE/atlas"}), ElementsAre("atlas: Feature/LOGIN"));
    EXPECT_THAT(shown({.searchText = "nowhere"}), IsEmpty());
}

TEST_F(WorktreeGroupingTest, FindsAWorktreeByTheWordsThatStandForItsBranch) {
    Worktree detached = worktree({});
    detached.branch.reset();
    detached.isDetached = true;
    list({detached});
    EXPECT_EQ(filtered(listed_.all(), {.searchText = "detached at 0123456"}).size(), 1U);
}

TEST_F(WorktreeGroupingTest, KeepsOnlyWorktreesThatMeetBothSearchAndFilter) {
    list({worktree({.branch = "one", .safety = WorktreeSafety::untrackedChanges}),
          worktree({.branch = "one-more"}),
          worktree({.branch = "two", .safety = WorktreeSafety::untrackedChanges})});
    EXPECT_THAT(shown({.searchText = "one", .disposition = SafetyDisposition::preserveFirst}),
                ElementsAre("atlas: one"));
    EXPECT_THAT(shown({.disposition = SafetyDisposition::inUse}), IsEmpty());
}

TEST(WorktreeGroupingNames, AreThoseOfTheCases) {
    EXPECT_EQ(rawValue(WorktreeGrouping::project), "project");
    EXPECT_EQ(rawValue(WorktreeGrouping::safety), "safety");
    EXPECT_EQ(title(WorktreeGrouping::project), "Project");
    EXPECT_EQ(title(WorktreeGrouping::safety), "Safety");
}

}  // namespace
}  // namespace cairnfield
