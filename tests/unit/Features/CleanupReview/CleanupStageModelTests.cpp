#include "Features/CleanupReview/CleanupStageModel.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;

std::vector<std::string> column(const CleanupStageModel& stages, int role) {
    std::vector<std::string> texts;
    for (int row = 0; row < stages.rowCount(); ++row)
        texts.push_back(stages.data(stages.index(row), role).toString().toStdString());
    return texts;
}

TEST(CleanupStageModel, ListsTheStagesInTheirOrder) {
    const CleanupStageModel stages;
    EXPECT_THAT(column(stages, CleanupStageModel::stageTitleRole),
                ElementsAre("Checking the worktree", "Creating the recovery branch", "Staging reviewed files",
                            "Committing", "Pushing to the remote", "Opening a draft pull request",
                            "Verifying the remote copy", "Copying local-only files to the Recovery Vault",
                            "Removing the worktree", "Verifying removal", "Completed"));
}

TEST(CleanupStageModel, TellsWhatIsDoneWhatIsUnderWayAndWhatIsToCome) {
    CleanupStageModel stages;
    stages.moveTo(CleanupStage::staging);
    const int last = stages.rowCount() - 1;
    const auto row = [&](int number) {
        const QModelIndex index = stages.index(number);
        return std::vector{stages.data(index, CleanupStageModel::symbolNameRole).toString().toStdString(),
                           stages.data(index, CleanupStageModel::tintRole).toString().toStdString(),
                           stages.data(index, CleanupStageModel::progressRole).toString().toStdString()};
    };
    EXPECT_THAT(row(0), ElementsAre("checkmark.circle.fill", "accent", "Done"));
    EXPECT_THAT(row(1), ElementsAre("checkmark.circle.fill", "accent", "Done"));
    EXPECT_THAT(row(2), ElementsAre("circle.dotted", "secondary", "In progress"));
    EXPECT_THAT(row(3), ElementsAre("circle", "secondary", "Pending"));
    EXPECT_THAT(row(last), ElementsAre("circle", "secondary", "Pending"));
}

TEST(CleanupStageModel, StandsAtTheFirstRowForAStageWithoutOne) {
    using enum CleanupStage;
    for (const CleanupStage stage : {preparing, awaitingReview, rescanningStorage, failed, cancelled}) {
        CleanupStageModel stages;
        stages.moveTo(pushing);
        stages.moveTo(stage);
        EXPECT_EQ(stages.data(stages.index(0), CleanupStageModel::progressRole), "In progress")
            << rawValue(stage);
        EXPECT_EQ(stages.data(stages.index(1), CleanupStageModel::progressRole), "Pending");
    }
}

TEST(CleanupStageModel, TellsOnlyOfTheRowsThatChange) {
    CleanupStageModel stages;
    stages.moveTo(CleanupStage::staging);
    const SignalCount changes(&stages, &CleanupStageModel::dataChanged);
    stages.moveTo(CleanupStage::staging);
    EXPECT_EQ(changes.count(), 0);
    stages.moveTo(CleanupStage::committing);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.row(), 2);
}

}  // namespace
}  // namespace cairnfield
