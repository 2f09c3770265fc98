#include "Features/Worktrees/ListedWorktrees.h"
#include "SampleWorktrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<SizeKnowledge> knowledgeOf(const ListedWorktrees& listed) {
    std::vector<SizeKnowledge> result;
    for (const ListedWorktree& worktree : listed.all()) result.push_back(worktree.sizeKnowledge);
    return result;
}

std::vector<std::int64_t> orderOf(const ListedWorktrees& listed) {
    std::vector<std::int64_t> result;
    for (const ListedWorktree& worktree : listed.all()) result.push_back(worktree.orderBytes);
    return result;
}

TEST(ListedWorktrees, AwaitsTheSizesThatMeasuringHasNotComeTo) {
    ListedWorktrees listed;
    listed.update(
        {worktree({.branch = "a"}), worktree({.branch = "b"}), worktree({.branch = "c", .size = 5})},
        SizingProgress{1, 3});
    EXPECT_THAT(knowledgeOf(listed),
                ElementsAre(SizeKnowledge::known, SizeKnowledge::awaited, SizeKnowledge::known));
}

TEST(ListedWorktrees, KnowsEverySizeOnceNobodyMeasures) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a"})}, SizingProgress{0, 1});
    const auto update = listed.update({worktree({.branch = "a"})}, std::nullopt);
    EXPECT_THAT(knowledgeOf(listed), ElementsAre(SizeKnowledge::known));
    EXPECT_THAT(update.changed, ElementsAre(listed.all()[0].key)) << "its dash became a zero";
}

TEST(ListedWorktrees, KeepsTheOrderWhileSizesArriveAndTakesThemAllInTheEnd) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a"}), worktree({.branch = "b"})}, SizingProgress{0, 2});
    const auto during = listed.update({worktree({.branch = "a", .size = 4}), worktree({.branch = "b"})},
                                      SizingProgress{1, 2});
    EXPECT_FALSE(during.orderMayDiffer);
    EXPECT_THAT(during.changed, ElementsAre(listed.all()[0].key));
    EXPECT_THAT(orderOf(listed), ElementsAre(0, 0));
    const auto after = listed.update(
        {worktree({.branch = "a", .size = 4}), worktree({.branch = "b", .size = 6})}, std::nullopt);
    EXPECT_TRUE(after.orderMayDiffer);
    EXPECT_THAT(orderOf(listed), ElementsAre(4, 6));
}

TEST(ListedWorktrees, KeepsTheOldOrderThroughARescanUntilTheNewSizesAreThere) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a", .size = 4}), worktree({.branch = "b", .size = 6})}, std::nullopt);
    listed.update({worktree({.branch = "a"}), worktree({.branch = "b"}), worktree({.branch = "c"})},
                  SizingProgress{0, 3});
    EXPECT_THAT(orderOf(listed), ElementsAre(4, 6, 0));
}

TEST(ListedWorktrees, OrdersByThePresentSizesWhenAsked) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a"})}, SizingProgress{0, 1});
    listed.update({worktree({.branch = "a", .size = 4})}, SizingProgress{1, 1});
    EXPECT_TRUE(listed.adoptSizes());
    EXPECT_THAT(orderOf(listed), ElementsAre(4));
    EXPECT_FALSE(listed.adoptSizes());
}

TEST(ListedWorktrees, FindsNothingChangedInTheSameList) {
    ListedWorktrees listed;
    const std::vector<Worktree> same{worktree({.branch = "a", .size = 1})};
    listed.update(same, std::nullopt);
    const auto update = listed.update(same, std::nullopt);
    EXPECT_THAT(update.changed, IsEmpty());
    EXPECT_FALSE(update.orderMayDiffer);
}

TEST(ListedWorktrees, KnowsAWorktreeAgainWhereverItStandsInTheNextList) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a"}), worktree({.branch = "b"})}, std::nullopt);
    const RowKey a = listed.all()[0].key;
    const RowKey b = listed.all()[1].key;
    Worktree slashed = worktree({.branch = "a"});
    slashed.path = FilePath(slashed.path.bytes() + "/");
    EXPECT_TRUE(listed.update({worktree({.branch = "b"}), worktree({.branch = "c"}), slashed}, std::nullopt)
                    .orderMayDiffer);
    EXPECT_EQ(listed.all()[0].key, b);
    EXPECT_EQ(listed.all()[2].key, a);
    EXPECT_EQ(listed.find(FilePath("/code/atlas/a")), &listed.all()[2]);
    EXPECT_EQ(listed.find(FilePath("/code/atlas/gone")), nullptr);
}

TEST(ListedWorktrees, GivesTwoRecordsOfOnePathRowsOfTheirOwn) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a"})}, std::nullopt);
    listed.update({worktree({.branch = "a"}), worktree({.branch = "a"})}, std::nullopt);
    EXPECT_NE(listed.all()[0].key, listed.all()[1].key);
}

TEST(ListedWorktrees, FoldsTheNewNameOfABranch) {
    ListedWorktrees listed;
    listed.update({worktree({.branch = "a"})}, std::nullopt);
    Worktree renamed = worktree({.branch = "a"});
    renamed.branch = "Other";
    EXPECT_TRUE(listed.update({renamed}, std::nullopt).orderMayDiffer);
    EXPECT_TRUE(listed.all()[0].foldedBranch.contains(FoldedText("other")));
}

}  // namespace
}  // namespace cairnfield
