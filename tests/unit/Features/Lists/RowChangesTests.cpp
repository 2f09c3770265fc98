#include "Features/Lists/RowChanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Keys = std::vector<RowKey>;

// Does to a list what a view is told to do, and answers the list that the view then shows.
Keys stepped(Keys rows, const RowChanges& changes, const Keys& after) {
    for (const RowRun& run : changes.removals)
        rows.erase(rows.begin() + run.first, rows.begin() + run.first + run.count);
    if (changes.isReordered) {
        std::ranges::sort(rows, {},
                          [&](RowKey key) { return std::ranges::find(after, key) - after.begin(); });
    }
    for (const RowRun& run : changes.insertions) {
        rows.insert(rows.begin() + run.first, after.begin() + run.first,
                    after.begin() + run.first + run.count);
    }
    return rows;
}

TEST(RowChanges, AreNoneForTheSameRows) {
    EXPECT_TRUE(rowChanges(Keys{1, 2, 3}, Keys{1, 2, 3}).isEmpty());
}

TEST(RowChanges, TellOfARowThatCameAndNoOther) {
    const RowChanges changes = rowChanges(Keys{1, 2, 3}, Keys{1, 9, 2, 3});
    EXPECT_THAT(changes.removals, IsEmpty());
    EXPECT_FALSE(changes.isReordered);
    EXPECT_THAT(changes.insertions, ElementsAre(RowRun{1, 1}));
}

TEST(RowChanges, TellOfNeighboursThatWentAsOneRunAndOfTheLastRunFirst) {
    const RowChanges changes = rowChanges(Keys{1, 2, 3, 4, 5, 6}, Keys{1, 4, 6});
    EXPECT_THAT(changes.removals, ElementsAre(RowRun{4, 1}, RowRun{1, 2}));
    EXPECT_THAT(changes.insertions, IsEmpty());
}

TEST(RowChanges, TellAnotherOrderFromRowsThatCameAndWent) {
    EXPECT_TRUE(rowChanges(Keys{1, 2, 3}, Keys{3, 2, 1}).isReordered);
    EXPECT_FALSE(rowChanges(Keys{1, 2, 3}, Keys{4, 2, 5}).isReordered);
}

TEST(RowChanges, LeadToTheNewRowsWhateverTheyAre) {
    std::mt19937 random(7);
    for (int turn = 0; turn < 500; ++turn) {
        Keys all(30);
        std::ranges::generate(all, [key = RowKey{0}]() mutable { return ++key; });
        const auto some = [&] {
            std::ranges::shuffle(all, random);
            Keys keys(all.begin(), all.begin() + std::uniform_int_distribution<int>(0, 30)(random));
            if (turn % 2 == 0) std::ranges::sort(keys);
            return keys;
        };
        const Keys before = some();
        const Keys after = some();
        EXPECT_EQ(stepped(before, rowChanges(before, after), after), after);
    }
}

}  // namespace
}  // namespace cairnfield
