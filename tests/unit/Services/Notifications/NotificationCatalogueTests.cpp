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

}  // namespace
}  // namespace cairnfield
