#include "Features/MenuBar/MenuBarActionModel.h"
#include "Shared/Components/SymbolTable.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;

TEST(MenuBarActions, AreInOrderWithUpdatesOnlyWherePossible) {
    EXPECT_THAT(
        menuBarActions(true, true),
        ElementsAre(MenuBarAction::scanNow, MenuBarAction::reviewCleanup, MenuBarAction::openCairnfield,
                    MenuBarAction::checkForUpdates, MenuBarAction::pauseMonitoring, MenuBarAction::quit));
    EXPECT_THAT(
        menuBarActions(false, false),
        ElementsAre(MenuBarAction::scanNow, MenuBarAction::reviewCleanup, MenuBarAction::openCairnfield,
                    MenuBarAction::resumeMonitoring, MenuBarAction::quit));
}

TEST(MenuBarActions, HaveTheirWordsAndSymbols) {
    const auto words = [](MenuBarAction action) { return std::pair(title(action), symbolName(action)); };
    using Words = std::pair<std::string_view, std::string_view>;
    EXPECT_EQ(words(MenuBarAction::scanNow), Words("Scan now", "arrow.clockwise"));
    EXPECT_EQ(words(MenuBarAction::reviewCleanup), Words("Review cleanup", "checklist"));
    EXPECT_EQ(words(MenuBarAction::openCairnfield), Words("Open Cairnfield", "macwindow"));
    EXPECT_EQ(words(MenuBarAction::checkForUpdates), Words("Check for updates…", "arrow.down.circle"));
    EXPECT_EQ(words(MenuBarAction::pauseMonitoring), Words("Pause monitoring", "pause.circle"));
    EXPECT_EQ(words(MenuBarAction::resumeMonitoring), Words("Resume monitoring", "play.circle"));
    EXPECT_EQ(words(MenuBarAction::quit), Words("Quit Cairnfield", "power"));
}

TEST(MenuBarActions, AllHaveAPicture) {
    for (const bool isMonitoring : {true, false}) {
        for (const MenuBarAction action : menuBarActions(true, isMonitoring))
            EXPECT_NE(symbolFile(symbolName(action)), "") << title(action);
    }
}

TEST(MenuBarActionModel, ShowsEachActionAndWhereAGroupStarts) {
    MenuBarActionModel model;
    EXPECT_TRUE(model.update(menuBarActions(false, true)));
    ASSERT_EQ(model.rowCount(), 5);
    const auto data = [&model](int row, int role) { return model.data(model.index(row), role); };
    EXPECT_EQ(data(1, MenuBarActionModel::titleRole), "Review cleanup");
    EXPECT_EQ(data(1, MenuBarActionModel::symbolNameRole), "checklist");
    std::vector<int> starts;
    for (int row = 0; row < model.rowCount(); ++row) {
        if (data(row, MenuBarActionModel::startsGroupRole).toBool()) starts.push_back(row);
    }
    EXPECT_THAT(starts, ElementsAre(0, 4));
    EXPECT_FALSE(model.data(model.index(5), MenuBarActionModel::titleRole).isValid());
}

TEST(MenuBarActionModel, KeepsItsRowsWhenMonitoringIsSwitched) {
    MenuBarActionModel model;
    model.update(menuBarActions(true, true));
    const SignalCount resets(&model, &QAbstractItemModel::modelReset);
    const SignalCount changes(&model, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model.update(menuBarActions(true, false)));
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_FALSE(model.update(menuBarActions(true, false)));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(model.update(menuBarActions(false, false)));
    EXPECT_EQ(resets.count(), 1);
}

}  // namespace
}  // namespace cairnfield
