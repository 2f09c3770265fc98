#include "Features/WatchedFolders/FolderTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace cairnfield {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr Date now = Date(std::chrono::seconds(1'800'000'000));

FolderRowText row(const WatchedFolder& folder, const DirectoryScanResult* result = nullptr) {
    return folderRowText(folder, result, now);
}

TEST(FolderRowText, SaysOfANewFolderThatItWasNotScanned) {
    const FolderRowText text = row(WatchedFolder::make(FilePath("/home/ada/code")));
    EXPECT_EQ(text.name, "code");
    EXPECT_EQ(text.path, "/home/ada/code");
    EXPECT_EQ(text.size, "Not scanned");
    EXPECT_FALSE(text.isSizeKnown);
    EXPECT_EQ(text.change, "");
    EXPECT_EQ(text.level, StorageLevel::normal);
    EXPECT_EQ(text.scanned, "Scanned Never");
    EXPECT_EQ(text.error, "");
    EXPECT_THAT(text.largest, IsEmpty());
    EXPECT_EQ(text.description, "Not scanned, Healthy, Scanned Never, /home/ada/code");
}

TEST(FolderRowText, TellsTheSizeAndWhenItWasMeasured) {
    WatchedFolder folder = WatchedFolder::make(FilePath("/code"));
    folder.lastKnownSizeBytes = 3'000'000'000;
    folder.lastScanAt = now - std::chrono::hours(2);
    EXPECT_EQ(row(folder).size, "3 GB");
    EXPECT_TRUE(row(folder).isSizeKnown);
    EXPECT_EQ(row(folder).scanned, "Scanned 2 hr. ago");
    EXPECT_EQ(row(folder).change, "") << "there is nothing to compare with";
}

TEST(FolderRowText, TellsTheChangeWithItsSign) {
    WatchedFolder folder = WatchedFolder::make(FilePath("/code"));
    folder.lastKnownSizeBytes = 3'000'000'000;
    folder.previousSizeBytes = 2'000'000'000;
    EXPECT_EQ(row(folder).change, "+1 GB");
    folder.previousSizeBytes = 3'500'000'000;
    EXPECT_EQ(row(folder).change, "-500 MB");
}

TEST(FolderRowText, HasNoChangeLineForEqualSizes) {
    WatchedFolder folder = WatchedFolder::make(FilePath("/code"));
    folder.lastKnownSizeBytes = folder.previousSizeBytes = 7;
    EXPECT_EQ(row(folder).change, "");
}

TEST(FolderRowText, JudgesTheSizeByTheFoldersOwnLimits) {
    WatchedFolder folder = WatchedFolder::make(FilePath("/code"));
    folder.lastKnownSizeBytes = 10;
    folder.warningBytes = 10;
    EXPECT_EQ(row(folder).level, StorageLevel::warning);
    folder.criticalBytes = 10;
    EXPECT_EQ(row(folder).level, StorageLevel::critical);
}

TEST(FolderRowText, TellsWhyTheLastScanFailed) {
    WatchedFolder folder = WatchedFolder::make(FilePath("/code"));
    folder.lastScanError = "3 item(s) could not be read.";
    EXPECT_EQ(row(folder).error, "3 item(s) could not be read.");
}

TEST(FolderRowText, ShowsSixOfSevenChildren) {
    DirectoryScanResult result;
    for (int child = 7; child > 0; --child) {
        result.largestChildren.push_back(
            {FilePath("/code/item" + std::to_string(child)), child * 1'000'000, true});
    }
    const FolderRowText text = row(WatchedFolder::make(FilePath("/code")), &result);
    ASSERT_THAT(text.largest, SizeIs(6));
    EXPECT_EQ(text.largest.front(), (LargestItemText{"item7", "7 MB"}));
    EXPECT_EQ(text.largest.back(), (LargestItemText{"item2", "2 MB"}));
}

TEST(FolderRowText, MakesHostileNamesSafeToLookAt) {
    DirectoryScanResult result;
    result.largestChildren = {{FilePath("/code/a\nb\xff"), 1, true}};
    const FolderRowText text = row(WatchedFolder::make(FilePath("/co\nde")), &result);
    EXPECT_EQ(text.name, "co␊de");
    EXPECT_EQ(text.path, "/co␊de");
    EXPECT_EQ(text.largest[0].name, "a␊b\uFFFD");
}

}  // namespace
}  // namespace cairnfield
