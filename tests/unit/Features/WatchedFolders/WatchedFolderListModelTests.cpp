#include "Features/WatchedFolders/WatchedFolderListModel.h"
#include "support/SettableWallClock.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

class WatchedFolderListModelTest : public testing::Test {
protected:
    void show(const std::vector<WatchedFolder>& folders, const std::set<UUID>& scanning = {}) {
        model_.update(folders, results_, scanning);
    }

    SettableWallClock clock_;
    WatchedFolderListModel model_{clock_};
    std::map<UUID, DirectoryScanResult> results_;
    WatchedFolder code_ = WatchedFolder::make(FilePath("/code"));
    WatchedFolder work_ = WatchedFolder::make(FilePath("/work"));
};

TEST_F(WatchedFolderListModelTest, ShowsTheFoldersInTheirOrder) {
    show({work_, code_});
    ASSERT_EQ(model_.rowCount(), 2);
    EXPECT_EQ(model_.item(0).name, "work");
    EXPECT_EQ(model_.item(1).path, "/code");
    EXPECT_EQ(model_.item(1).level, "Healthy");
    EXPECT_EQ(model_.item(1).symbolName, "checkmark.circle");
    EXPECT_EQ(model_.item(1).tint, "green");
    EXPECT_EQ(model_.rowOf(code_.id), 1);
    EXPECT_EQ(model_.rowOf(UUID()), -1);
    EXPECT_EQ(model_.folderAt(2), nullptr);
}

TEST_F(WatchedFolderListModelTest, TellsOnlyTheRowThatChanged) {
    show({work_, code_});
    SignalCount changes(&model_, &QAbstractItemModel::dataChanged);
    SignalCount resets(&model_, &QAbstractItemModel::modelReset);
    show({work_, code_}, {code_.id});
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.row(), 1);
    EXPECT_TRUE(model_.item(1).isScanning);
    show({work_, code_}, {code_.id});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(WatchedFolderListModelTest, InsertsAndRemovesSingleRows) {
    show({work_});
    SignalCount inserted(&model_, &QAbstractItemModel::rowsInserted);
    SignalCount removed(&model_, &QAbstractItemModel::rowsRemoved);
    show({work_, code_});
    EXPECT_EQ(inserted.count(), 1);
    show({code_});
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(model_.item(0).name, "code");
    show({});
    EXPECT_EQ(model_.rowCount(), 0);
}

TEST_F(WatchedFolderListModelTest, FollowsAnotherOrder) {
    show({work_, code_});
    show({code_, work_});
    EXPECT_EQ(model_.item(0).name, "code");
}

TEST_F(WatchedFolderListModelTest, ShowsTheLargestItemsOfThisRunsScan) {
    results_[code_.id].largestChildren = {{FilePath("/code/atlas"), 5'000'000, true}};
    show({work_, code_});
    EXPECT_TRUE(model_.item(0).largest.isEmpty());
    ASSERT_EQ(model_.item(1).largest.size(), 1);
    EXPECT_EQ(model_.item(1).largest[0].toMap()["name"], "atlas");
    EXPECT_EQ(model_.item(1).largest[0].toMap()["size"], "5 MB");
}

}  // namespace
}  // namespace cairnfield
