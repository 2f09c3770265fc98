#include "Features/History/HistoryViewModel.h"
#include "SampleReceipts.h"
#include "Shared/Logging/Log.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/CapturedLog.h"
#include "support/FakePasteboard.h"
#include "support/FakeWorkspace.h"
#include "support/QtApplication.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class HistoryScreen : public testing::Test {
protected:
    AppState& state() { return AppModelStaging::state(*app.model); }

    void stage(std::vector<CleanupReceipt> receipts) {
        state().receipts.set(std::move(receipts));
        screen.flush();
    }

    [[nodiscard]] HistoryListItem item(int row) {
        return screen.rows()
            ->data(screen.rows()->index(row), ItemListModel::itemRole)
            .value<HistoryListItem>();
    }
    [[nodiscard]] std::vector<std::string> detailLabels() const {
        std::vector<std::string> labels;
        for (const QVariant& row : screen.detail().rows)
            labels.push_back(row.toMap()["label"].toString().toStdString());
        return labels;
    }

    QtApplication qt;
    AppHarness app;
    FakeWorkspace workspace;
    FakePasteboard pasteboard;
    HistoryViewModel screen{*app.model, workspace, pasteboard};
};

TEST_F(HistoryScreen, HasNoListWithoutReceipts) {
    EXPECT_FALSE(screen.showsList());
    EXPECT_FALSE(screen.detail().isPresent);
    screen.copySummary();
    screen.revealVaultFiles();
    EXPECT_EQ(pasteboard.writes, 0);
    EXPECT_THAT(workspace.revealed, IsEmpty());
}

TEST_F(HistoryScreen, ListsTheReceiptsInTheirOrderWithSymbolAndTint) {
    stage({bareReceipt("atlas", CleanupOutcome::failed), fullReceipt("zephyr"),
           bareReceipt("pantry", CleanupOutcome::partiallyCompleted),
           bareReceipt("tide", CleanupOutcome::cancelled)});
    ASSERT_EQ(screen.rows()->rowCount(), 4);
    EXPECT_EQ(item(0).outcome, "Failed");
    EXPECT_EQ(item(0).symbolName, "exclamationmark.triangle");
    EXPECT_EQ(item(0).repository, "atlas");
    EXPECT_EQ(item(0).tint, "red");
    EXPECT_EQ(item(1).outcome, "Cleaned");
    EXPECT_EQ(item(1).symbolName, "checkmark.circle");
    EXPECT_EQ(item(1).tint, "green");
    EXPECT_EQ(item(2).outcome, "Preserved, not removed");
    EXPECT_EQ(item(2).symbolName, "exclamationmark.triangle");
    EXPECT_EQ(item(3).outcome, "Cancelled");
    EXPECT_EQ(item(3).symbolName, "exclamationmark.triangle");
    EXPECT_FALSE(item(3).date.isEmpty());
    EXPECT_FALSE(screen.detail().isPresent) << "nothing is chosen yet";
}

TEST_F(HistoryScreen, ShowsASuccessWithoutAWordOnWhatStoppedIt) {
    stage({fullReceipt("atlas")});
    screen.selection()->select(0);
    EXPECT_TRUE(screen.detail().isPresent);
    EXPECT_EQ(screen.detail().head.outcome, "Cleaned");
    EXPECT_EQ(screen.detail().failure, "");
    EXPECT_TRUE(screen.detail().hasVaultFiles);
    EXPECT_THAT(detailLabels(), testing::Contains("Recovery branch"));
}

TEST_F(HistoryScreen, ShowsOfACancelledAttemptOnlyWhatItHas) {
    stage({bareReceipt("atlas", CleanupOutcome::cancelled)});
    screen.selection()->select(0);
    EXPECT_THAT(detailLabels(), ElementsAre("Worktree", "Safety at the time", "Reclaimed", "Final stage"));
    EXPECT_FALSE(screen.detail().hasVaultFiles);
    screen.revealVaultFiles();
    EXPECT_THAT(workspace.revealed, IsEmpty());
}

TEST_F(HistoryScreen, ShowsWhatStoppedAFailure) {
    CleanupReceipt receipt = bareReceipt("atlas", CleanupOutcome::failed);
    receipt.errorSummary = "The remote refused.";
    stage({receipt});
    screen.selection()->select(0);
    EXPECT_EQ(screen.detail().failure, "The remote refused.");
}

TEST_F(HistoryScreen, KeepsTheSelectionWhenTheReceiptsReload) {
    const CleanupReceipt old = bareReceipt("atlas", CleanupOutcome::failed);
    stage({old});
    screen.selection()->select(0);
    SignalCount details(&screen, &HistoryViewModel::detailChanged);
    stage({fullReceipt("zephyr"), old});
    EXPECT_EQ(screen.selection()->row(), 1);
    EXPECT_EQ(screen.detail().head.repository, "atlas");
    EXPECT_EQ(details.count(), 0) << "nothing that is looked at has changed";
    stage({});
    EXPECT_FALSE(screen.detail().isPresent);
    EXPECT_FALSE(screen.showsList());
}

TEST_F(HistoryScreen, CopiesTheSummaryOfTheChosenReceipt) {
    const CleanupReceipt receipt = fullReceipt("zephyr");
    stage({bareReceipt("atlas", CleanupOutcome::failed), receipt});
    screen.copySummary();
    EXPECT_EQ(pasteboard.writes, 0);
    screen.selection()->select(1);
    screen.copySummary();
    EXPECT_EQ(pasteboard.writes, 1);
    EXPECT_EQ(pasteboard.contents, receipt.recoverySummary());
}

TEST_F(HistoryScreen, RevealsAllVaultFilesAtOnceByteForByte) {
    stage({fullReceipt("atlas")});
    screen.selection()->select(0);
    screen.revealVaultFiles();
    EXPECT_THAT(workspace.revealed,
                ElementsAre(FilePath("/vault/one/.env"), FilePath("/vault/two/key\xff.pem")));
    EXPECT_EQ(screen.notice(), "");
}

TEST_F(HistoryScreen, SaysWhyTheVaultFilesCannotBeShownUntilSomethingElseIsChosen) {
    stage({fullReceipt("atlas"), fullReceipt("zephyr")});
    screen.selection()->select(0);
    workspace.answer = "No file manager was found.";
    screen.revealVaultFiles();
    EXPECT_EQ(screen.notice(), "No file manager was found.");
    screen.selection()->select(1);
    EXPECT_EQ(screen.notice(), "");
}

TEST_F(HistoryScreen, FollowsTheStateInTheNextTurnOfTheLoop) {
    state().receipts.set({fullReceipt("atlas")});
    EXPECT_FALSE(screen.showsList());
    QtApplication::processEvents();
    EXPECT_TRUE(screen.showsList());
}

TEST_F(HistoryScreen, ActsOnTheReceiptOfTheRowWhileTheStateIsAhead) {
    const CleanupReceipt receipt = fullReceipt("atlas");
    stage({receipt});
    screen.selection()->select(0);
    state().receipts.set({bareReceipt("newer", CleanupOutcome::failed), receipt});
    screen.copySummary();
    EXPECT_EQ(pasteboard.contents, receipt.recoverySummary());
}

TEST_F(HistoryScreen, ShowsTheEmptyStateForAFileThatCannotBeReadAndLeavesItThere) {
    for (const std::string garbled : {"not json", "{}", "[{\"id\": 7}]", "\xff\xfe"}) {
        const FilePath file = app.home.write("data/Cairnfield/cleanup-receipts.json", garbled);
        const CapturedLog log(Log::persistence());
        app.restart();
        app.run(app.model->start());
        HistoryViewModel anew(*app.model, workspace, pasteboard);
        EXPECT_FALSE(anew.showsList());
        EXPECT_EQ(contentOf(file), garbled);
        EXPECT_THAT(log.text(), HasSubstr("Failed to decode cleanup-receipts.json")) << garbled;
    }
}

TEST_F(HistoryScreen, SaysWhatShouldBeKnownAboutItsFileAndNoOther) {
    EXPECT_EQ(screen.fileNotice(), "");
    state().storedFileNotices.set(
        {{"cleanup-receipts.json", "It is kept."}, {"other.json", "not shown here"}});
    screen.flush();
    EXPECT_EQ(screen.fileNotice(), "It is kept.");
    state().storedFileNotices.set({{"other.json", "not shown here"}});
    screen.flush();
    EXPECT_EQ(screen.fileNotice(), "");
}

}  // namespace
}  // namespace cairnfield
