#include "Features/ItemLists/RecordOfRow.h"
#include "Features/ItemLists/RowSelection.h"
#include "SampleItems.h"
#include "support/SignalCount.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

class RowSelectionTest : public testing::Test {
protected:
    void show(const std::vector<ListItem>& shown) {
        model.show(shown);
        selection.rowsChanged();
    }

    ItemListModel model;
    RowSelection selection{model};
    const std::vector<ListItem> items = listItems({"atlas", "beacon", "bell"});
};

TEST_F(RowSelectionTest, StartsWithNothingChosen) {
    show(items);
    EXPECT_EQ(selection.row(), -1);
}

TEST_F(RowSelectionTest, FollowsItsRecordToAnotherPlaceAndGoesWithIt) {
    show(items);
    selection.select(2);
    SignalCount changes(&selection, &RowSelection::changed);
    show({items[2], items[0]});
    EXPECT_EQ(selection.row(), 0);
    EXPECT_EQ(changes.count(), 1);
    show({items[0]});
    EXPECT_EQ(selection.row(), -1);
    show(items);
    EXPECT_EQ(selection.row(), -1) << "what went is not chosen again when it comes back";
}

TEST_F(RowSelectionTest, TellsOncePerChange) {
    show(items);
    SignalCount changes(&selection, &RowSelection::changed);
    selection.select(1);
    selection.select(1);
    selection.select(3);
    selection.select(-1);
    show(items);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(selection.row(), 1);
}

TEST_F(RowSelectionTest, MovesByKeysAndStopsAtBothEnds) {
    show(items);
    selection.move(1);
    EXPECT_EQ(selection.row(), 0) << "the first step chooses the first row";
    selection.move(-1);
    EXPECT_EQ(selection.row(), 0);
    selection.move(1);
    EXPECT_EQ(selection.row(), 1);
    selection.move(10);
    EXPECT_EQ(selection.row(), 2);
    selection.selectFirst();
    EXPECT_EQ(selection.row(), 0);
    selection.selectLast();
    EXPECT_EQ(selection.row(), 2);
}

TEST_F(RowSelectionTest, FindsARowByTheStartOfItsName) {
    show(items);
    selection.typeAhead("b");
    EXPECT_EQ(selection.row(), 1);
    selection.typeAhead("e");
    selection.typeAhead("l");
    EXPECT_EQ(selection.row(), 2);
}

TEST_F(RowSelectionTest, DoesNothingInAnEmptyList) {
    selection.move(1);
    selection.selectFirst();
    selection.selectLast();
    selection.typeAhead("a");
    EXPECT_EQ(selection.row(), -1);
}

struct Record {
    UUID id;
    int number = 0;
};

TEST_F(RowSelectionTest, LeadsFromARowToItsRecordEvenWhenTheListHasMovedOn) {
    show(items);
    const std::vector<Record> records{{items[1].id, 1}, {items[2].id, 2}};
    EXPECT_EQ(recordOfRow(model, 0, records), nullptr);
    EXPECT_EQ(recordOfRow(model, 1, records), &records[0]);
    EXPECT_EQ(recordOfRow(model, 2, records), &records[1]);
    EXPECT_EQ(recordOfRow(model, -1, records), nullptr);
    const std::vector<Record> twice{{items[0].id, 1}, {items[0].id, 2}, {items[2].id, 3}};
    show({items[0], items[0], items[2]});
    EXPECT_EQ(recordOfRow(model, 1, twice), &twice[1]);
}

}  // namespace
}  // namespace cairnfield
