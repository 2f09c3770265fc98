#include "Services/Notifications/NotificationCatalogue.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using Payload = NotificationRequestPayload;

StorageSnapshot snapshotWith(std::int64_t available, std::string volume = "Macintosh HD") {
    return {.volumeURL = FilePath("/"),
            .volumeName = std::move(volume),
            .totalCapacity = 500'000'000'000,
            .availableCapacity = available};
}

WatchedFolder folderNamed(std::string name) {
    WatchedFolder folder;
    folder.id = *UUID::parse("6f9619ff-8b86-d011-b42d-00c04fc964ff");
    folder.displayName = std::move(name);
    folder.path = FilePath("/home/dev/Projects");
    return folder;
}

TEST(StorageAlert, WarnsOfLittleSpace) {
    const Payload expected{.kind = NotificationKind::storageWarning,
                           .title = "Storage running low",
                           .body = "12.5 GB free on Macintosh HD. 3 GB looks reclaimable.",
                           .identifier = "storage.warning"};
    EXPECT_EQ(NotificationCatalogue::storageAlert(StorageLevel::warning, snapshotWith(12'500'000'000),
                                                  3'000'000'000),
              expected);
}

TEST(StorageAlert, HasTheSameBodyWhenItIsCritical) {
    const Payload expected{.kind = NotificationKind::storageCritical,
                           .title = "Storage critically low",
                           .body = "1.5 GB free on Macintosh HD. 3 GB looks reclaimable.",
                           .identifier = "storage.critical"};
    EXPECT_EQ(NotificationCatalogue::storageAlert(StorageLevel::critical, snapshotWith(1'500'000'000),
                                                  3'000'000'000),
              expected);
}

TEST(StorageAlert, HoldsNoNumberAndNoTimeInItsIdentifier) {
    const Payload first =
        NotificationCatalogue::storageAlert(StorageLevel::warning, snapshotWith(9'000'000'000), 0);
    const Payload second =
        NotificationCatalogue::storageAlert(StorageLevel::warning, snapshotWith(8'000'000'000), 5);
    EXPECT_EQ(first.identifier, second.identifier);
    EXPECT_NE(first.body, second.body);
}

TEST(StorageAlert, ReadsNegativeCountsAsNothing) {
    EXPECT_EQ(NotificationCatalogue::storageAlert(StorageLevel::warning, snapshotWith(-7), -9).body,
              NotificationCatalogue::storageAlert(StorageLevel::warning, snapshotWith(0), 0).body);
}

TEST(StorageAlert, LeavesWhatLooksLikeMarkupInAVolumesNameAlone) {
    EXPECT_EQ(NotificationCatalogue::storageAlert(StorageLevel::warning,
                                                  snapshotWith(2'000'000'000, "<b>x</b>&"), 1'000'000'000)
                  .body,
              "2 GB free on <b>x</b>&. 1 GB looks reclaimable.");
}

TEST(StorageAlert, MakesWhatNobodyCanSeeInAVolumesNameVisible) {
    EXPECT_EQ(NotificationCatalogue::storageAlert(StorageLevel::warning,
                                                  snapshotWith(2'000'000'000, "a\nb\xff"), 1'000'000'000)
                  .body,
              "2 GB free on a\u240Ab\uFFFD. 1 GB looks reclaimable.");
}

TEST(FolderThreshold, TellsTheEstimatedSizeAndWhichFolder) {
    WatchedFolder folder = folderNamed("Projects");
    folder.lastKnownSizeBytes = 42'000'000'000;
    const Payload expected{.kind = NotificationKind::watchedFolderThreshold,
                           .title = "Projects is large",
                           .body = "~42 GB on disk.",
                           .identifier = "folder.threshold.6F9619FF-8B86-D011-B42D-00C04FC964FF",
                           .userInfo = {{"path", "/home/dev/Projects"}}};
    EXPECT_EQ(NotificationCatalogue::folderThreshold(folder), expected);
}

TEST(GrowthAnomaly, TellsTheGrowthWithItsSign) {
    const Payload expected{.kind = NotificationKind::growthAnomaly,
                           .title = "Projects is growing fast",
                           .body = "+6.5 GB in the last 24 hours.",
                           .identifier = "folder.growth.6F9619FF-8B86-D011-B42D-00C04FC964FF",
                           .userInfo = {{"path", "/home/dev/Projects"}}};
    EXPECT_EQ(NotificationCatalogue::growthAnomaly(folderNamed("Projects"), 6'500'000'000, 24), expected);
    EXPECT_EQ(NotificationCatalogue::growthAnomaly(folderNamed("Projects"), -6'500'000'000, 3).body,
              "-6.5 GB in the last 3 hours.");
}

TEST(FolderAlerts, CarryAPathsBytesAsTheyAre) {
    WatchedFolder folder = folderNamed("odd");
    folder.path = FilePath("/tmp/\xff\n<i>");
    EXPECT_EQ(NotificationCatalogue::folderThreshold(folder).userInfo.at("path"), "/tmp/\xff\n<i>");
}

CleanupReceipt receiptWith(CleanupOutcome outcome) {
    CleanupReceipt receipt;
    receipt.id = *UUID::parse("6f9619ff-8b86-d011-b42d-00c04fc964ff");
    receipt.repositoryName = "project";
    receipt.outcome = outcome;
    return receipt;
}

TEST(CleanupEnd, TellsWhatWasReclaimed) {
    CleanupReceipt receipt = receiptWith(CleanupOutcome::succeeded);
    receipt.reclaimedBytes = 1'500'000'000;
    const Payload expected{.kind = NotificationKind::cleanupCompleted,
                           .title = "Cleanup complete",
                           .body = "Reclaimed about 1.5 GB from project.",
                           .identifier = "cleanup." + receipt.id.text()};
    EXPECT_EQ(NotificationCatalogue::cleanupEnded(receipt), expected);
    receipt.reclaimedBytes = -7;
    const std::string nothing = NotificationCatalogue::cleanupEnded(receipt).body;
    receipt.reclaimedBytes = 0;
    EXPECT_EQ(NotificationCatalogue::cleanupEnded(receipt).body, nothing);
}

TEST(CleanupEnd, TellsWhatStoppedItInTheReceiptsWords) {
    for (const CleanupOutcome outcome :
         {CleanupOutcome::failed, CleanupOutcome::cancelled, CleanupOutcome::partiallyCompleted}) {
        CleanupReceipt receipt = receiptWith(outcome);
        receipt.errorSummary = "The push was <b>rejected</b>.";
        receipt.reclaimedBytes = 1'500'000'000;
        const Payload expected{.kind = NotificationKind::cleanupFailed,
                               .title = "Cleanup stopped, work is safe",
                               .body = "The push was <b>rejected</b>.",
                               .identifier = "cleanup." + receipt.id.text()};
        EXPECT_EQ(NotificationCatalogue::cleanupEnded(receipt), expected);
    }
}

TEST(CleanupEnd, SaysThatNothingWasDeletedWhenNoWordsCame) {
    EXPECT_EQ(NotificationCatalogue::cleanupEnded(receiptWith(CleanupOutcome::failed)).body,
              "Nothing was deleted.");
}

TEST(CleanupEnd, IsToldOncePerAttempt) {
    CleanupReceipt again = receiptWith(CleanupOutcome::failed);
    const std::string first = NotificationCatalogue::cleanupEnded(again).identifier;
    again.outcome = CleanupOutcome::succeeded;
    EXPECT_EQ(NotificationCatalogue::cleanupEnded(again).identifier, first);
    again.id = UUID::make();
    EXPECT_NE(NotificationCatalogue::cleanupEnded(again).identifier, first);
}

TEST(CleanupEnd, RepairsBytesThatAreNoText) {
    CleanupReceipt receipt = receiptWith(CleanupOutcome::failed);
    receipt.errorSummary = "caf\xe9";
    EXPECT_EQ(NotificationCatalogue::cleanupEnded(receipt).body, "caf\xef\xbf\xbd");
    receipt = receiptWith(CleanupOutcome::succeeded);
    receipt.repositoryName = "caf\xe9";
    EXPECT_NE(NotificationCatalogue::cleanupEnded(receipt).body.find("caf\xef\xbf\xbd"), std::string::npos);
}

}  // namespace
}  // namespace cairnfield
