#include "SampleItems.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ItemListModelTest : public testing::Test {
protected:
    ItemListModel model;
    const UUID one = UUID::make();
    const UUID two = UUID::make();
};

TEST_F(ItemListModelTest, ShowsTheItemsInTheirOrder) {
    model.show({listItem(two, "second"), listItem(one, "first")});
    EXPECT_THAT(shownNames(model), ElementsAre("second", "first"));
    ASSERT_NE(model.at(1), nullptr);
    EXPECT_EQ(model.at(1)->id, one);
    EXPECT_EQ(model.at(-1), nullptr);
    EXPECT_EQ(model.at(2), nullptr);
    EXPECT_EQ(model.roleNames().value(ItemListModel::itemRole), "item");
    EXPECT_FALSE(model.data(model.index(5), ItemListModel::itemRole).isValid());
    EXPECT_EQ(model.rowOf(model.keyAt(1)), 1);
}

TEST_F(ItemListModelTest, TellsOnlyTheRowThatChanged) {
    model.show({listItem(one, "first"), listItem(two, "second")});
    SignalCount changes(&model, &QAbstractItemModel::dataChanged);
    SignalCount resets(&model, &QAbstractItemModel::modelReset);
    model.show({listItem(one, "first"), listItem(two, "changed")});
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.row(), 1);
    model.show({listItem(one, "first"), listItem(two, "changed")});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(ItemListModelTest, InsertsAndRemovesSingleRows) {
    model.show({listItem(one, "first")});
    SignalCount inserted(&model, &QAbstractItemModel::rowsInserted);
    SignalCount removed(&model, &QAbstractItemModel::rowsRemoved);
    SignalCount resets(&model, &QAbstractItemModel::modelReset);
    model.show({listItem(two, "second"), listItem(one, "first")});
    EXPECT_EQ(inserted.count(), 1);
    model.show({listItem(two, "second")});
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(resets.count(), 0);
    EXPECT_THAT(shownNames(model), ElementsAre("second"));
    model.show({});
    EXPECT_THAT(shownNames(model), IsEmpty());
}

TEST_F(ItemListModelTest, FollowsAnotherOrderAndAWholeOtherList) {
    model.show({listItem(one, "first"), listItem(two, "second")});
    model.show({listItem(two, "second"), listItem(one, "first")});
    EXPECT_THAT(shownNames(model), ElementsAre("second", "first"));
    model.show(listItems({"a", "b", "c"}));
    EXPECT_THAT(shownNames(model), ElementsAre("a", "b", "c"));
}

TEST_F(ItemListModelTest, ShowsARecordThatAFileHoldsTwiceTwice) {
    model.show({listItem(one, "first"), listItem(one, "again"), listItem(two, "second")});
    EXPECT_THAT(shownNames(model), ElementsAre("first", "again", "second"));
    EXPECT_NE(model.keyAt(0), model.keyAt(1));
    model.show({listItem(one, "again"), listItem(two, "second"), listItem(one, "third")});
    EXPECT_THAT(shownNames(model), ElementsAre("again", "second", "third"));
}

TEST_F(ItemListModelTest, KeepsARowsKeyWhileItIsAway) {
    model.show({listItem(one, "first"), listItem(two, "second")});
    const RowKey key = model.keyAt(0);
    model.show({listItem(two, "second")});
    EXPECT_EQ(model.rowOf(key), -1);
    model.show({listItem(two, "second"), listItem(one, "first")});
    EXPECT_EQ(model.rowOf(key), 1);
}

}  // namespace
}  // namespace cairnfield
