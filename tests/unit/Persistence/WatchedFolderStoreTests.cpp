#include "Persistence/WatchedFolderStore.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/SettableWallClock.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

class WatchedFolderStoreTest : public testing::Test {
protected:
    TemporaryDirectory home;
    ThreadPool pool{2};
    SettableWallClock clock{Date(1'000'000'000s)};
    const ApplicationSupport support{home.path().appending("data"), home.path().appending("config")};
    const FilePath file = support.directory().appending("watched-folders.json");
    WatchedFolderStore store{pool, support, clock};

    template <class T>
    T wait(Task<T> task) {
        return waitFor(pool, std::move(task));
    }
    WatchedFolder add(const std::string& path) { return wait(store.add(FilePath(path))); }
    WatchedFolderFile load() { return wait(store.load()); }
    WatchedFolderFile loadAgain() {
        WatchedFolderStore next(pool, support, clock);
        return wait(next.load());
    }
    [[nodiscard]] DirectoryScanResult result(std::int64_t bytes, int unreadable = 0) const {
        DirectoryScanResult made;
        made.totalBytes = bytes;
        made.scannedAt = clock.now();
        made.permissionErrorPaths.assign(static_cast<std::size_t>(unreadable), FilePath("/closed"));
        return made;
    }
    std::optional<WatchedFolder> record(const WatchedFolder& folder, const DirectoryScanResult& scan) {
        return wait(store.recordScan(folder.id, scan, 24));
    }
};

TEST_F(WatchedFolderStoreTest, IsEmptyAtTheFirstRun) {
    EXPECT_EQ(load(), WatchedFolderFile());
    EXPECT_THAT(wait(store.folders()), IsEmpty());
    EXPECT_FALSE(fs::exists(file.bytes()));
}

TEST_F(WatchedFolderStoreTest, LosesNothingOverADateThatItCannotHold) {
    WatchedFolder kept = add("/one");
    kept.snoozedUntil = clock.now();
    wait(store.update(kept));
    std::string text = contentOf(file);
    const std::string date = iso8601(clock.now());
    text.replace(text.find(date), date.size(), "9999-12-31T23:59:59Z");
    home.write("data/Cairnfield/watched-folders.json", text);
    kept.snoozedUntil = distantFuture();
    EXPECT_THAT(loadAgain().folders, ElementsAre(kept));
}

TEST_F(WatchedFolderStoreTest, AddsFoldersInOrderAndSavesThem) {
    const WatchedFolder first = add("/p/one");
    const WatchedFolder second = add("/p/two");
    EXPECT_EQ(first.displayName, "one");
    EXPECT_THAT(wait(store.folders()), ElementsAre(first, second));
    EXPECT_THAT(loadAgain().folders, ElementsAre(first, second));
}

TEST_F(WatchedFolderStoreTest, GivesTheFirstRecordOfAFolderThatIsAddedTwice) {
    const WatchedFolder first = add("/p/one");
    const std::string before = contentOf(file);
    fs::remove(file.bytes());
    EXPECT_EQ(add("/p/./one/"), first);
    EXPECT_FALSE(fs::exists(file.bytes())) << "nothing is written";
    EXPECT_THAT(wait(store.folders()), ElementsAre(first));
}

TEST_F(WatchedFolderStoreTest, StoresAPathStandardized) {
    EXPECT_EQ(add("/p//x/../one/.").path, FilePath("/p/one"));
    EXPECT_EQ(add("/p/One").path, FilePath("/p/One")) << "another spelling is another folder";
    EXPECT_EQ(load().folders.size(), 2U);
}

TEST_F(WatchedFolderStoreTest, CarriesAPathOfAnyBytes) {
    const WatchedFolder folder = add("/p/caf\xE9\n");
    EXPECT_THAT(loadAgain().folders, ElementsAre(folder));
    EXPECT_EQ(loadAgain().folders[0].path, FilePath("/p/caf\xE9\n"));
}

TEST_F(WatchedFolderStoreTest, AddsAFolderOnceWhoeverAsksAtTheSameTime) {
    std::vector<Task<WatchedFolder>> callers;
    for (int i = 0; i < 8; ++i) callers.push_back(store.add(FilePath("/p/one")));
    const std::vector<WatchedFolder> added = wait(whenAll(std::move(callers)));
    EXPECT_EQ(load().folders.size(), 1U);
    for (const WatchedFolder& folder : added) EXPECT_EQ(folder.id, load().folders[0].id);
}

TEST_F(WatchedFolderStoreTest, RecordsAScan) {
    const WatchedFolder folder = add("/p/one");
    record(folder, result(100));
    clock.advance(1h);
    const std::optional<WatchedFolder> updated = record(folder, result(150));
    ASSERT_TRUE(updated);
    EXPECT_EQ(updated->previousSizeBytes, 100);
    EXPECT_EQ(updated->lastKnownSizeBytes, 150);
    EXPECT_EQ(updated->lastScanAt, clock.now());
    EXPECT_EQ(updated->lastScanError, std::nullopt);
    const SizeSample first{Date(1'000'000'000s), 100};
    EXPECT_THAT(wait(store.samples(folder.path)), ElementsAre(first, SizeSample{clock.now(), 150}));
    EXPECT_EQ(loadAgain().folders[0], *updated);
}

TEST_F(WatchedFolderStoreTest, CountsWhatCouldNotBeReadAndStillTakesTheSize) {
    const WatchedFolder folder = add("/p/one");
    EXPECT_EQ(record(folder, result(7, 2))->lastScanError, "2 item(s) could not be read.");
    EXPECT_EQ(load().folders[0].lastKnownSizeBytes, 7);
    EXPECT_EQ(record(folder, result(7, 1))->lastScanError, "1 item(s) could not be read.");
    EXPECT_EQ(record(folder, result(7))->lastScanError, std::nullopt);
}

TEST_F(WatchedFolderStoreTest, KeepsTheSamplesOfOneWindow) {
    const WatchedFolder folder = add("/p/one");
    const Date start = clock.now();
    record(folder, result(1));
    clock.advance(24h);
    record(folder, result(2));
    EXPECT_EQ(wait(store.samples(folder.path)).size(), 2U) << "one as old as the window stays";
    clock.advance(1s);
    record(folder, result(3));
    EXPECT_THAT(wait(store.samples(folder.path)),
                ElementsAre(SizeSample{start + 24h, 2}, SizeSample{start + 24h + 1s, 3}));
}

TEST_F(WatchedFolderStoreTest, RecordsNothingForAFolderThatIsGone) {
    const WatchedFolder folder = add("/p/one");
    wait(store.remove(folder.id));
    const WatchedFolderFile before = load();
    EXPECT_EQ(record(folder, result(1)), std::nullopt);
    wait(store.recordScanFailure(folder.id, "no"));
    wait(store.update(folder));
    EXPECT_EQ(load(), before);
}

TEST_F(WatchedFolderStoreTest, RecordsAFailureAndNothingElse) {
    const WatchedFolder folder = add("/p/one");
    const WatchedFolder scanned = *record(folder, result(5));
    wait(store.recordScanFailure(folder.id, "It is gone."));
    WatchedFolder expected = scanned;
    expected.lastScanError = "It is gone.";
    EXPECT_THAT(wait(store.folders()), ElementsAre(expected));
    EXPECT_EQ(wait(store.samples(folder.path)).size(), 1U);
}

TEST_F(WatchedFolderStoreTest, UpdatesTheFolderOfTheSameIdentity) {
    WatchedFolder folder = add("/p/one");
    const WatchedFolder other = add("/p/two");
    folder.isEnabled = false;
    folder.warningBytes = 7;
    wait(store.update(folder));
    EXPECT_THAT(loadAgain().folders, ElementsAre(folder, other));
}

TEST_F(WatchedFolderStoreTest, RemovesAFolderWithItsSamplesAndKeepsItsPins) {
    const WatchedFolder folder = add("/p/one");
    const WatchedFolder other = add("/p/two");
    record(folder, result(1));
    record(other, result(2));
    wait(store.setPinned(true, FilePath("/p/one/worktree")));
    wait(store.remove(folder.id));
    EXPECT_EQ(load().folders.size(), 1U);
    EXPECT_THAT(wait(store.samples(folder.path)), IsEmpty());
    EXPECT_EQ(wait(store.samples(other.path)).size(), 1U);
    EXPECT_THAT(wait(store.pinnedWorktreePaths()), ElementsAre(FilePath("/p/one/worktree")));
    EXPECT_EQ(loadAgain(), load());
}

TEST_F(WatchedFolderStoreTest, ChangesNothingForAnUnknownIdentity) {
    add("/p/one");
    const WatchedFolderFile before = load();
    wait(store.remove(UUID::make()));
    EXPECT_EQ(load(), before);
}

TEST_F(WatchedFolderStoreTest, PinsAPathOnce) {
    const FilePath pin("/p/w");
    wait(store.setPinned(true, pin));
    wait(store.setPinned(true, pin));
    wait(store.setPinned(true, FilePath("/p/v")));
    EXPECT_THAT(load().pinnedWorktreePaths, ElementsAre(pin, FilePath("/p/v")));
    wait(store.setPinned(false, pin));
    wait(store.setPinned(false, FilePath("/unknown")));
    EXPECT_THAT(loadAgain().pinnedWorktreePaths, ElementsAre(FilePath("/p/v")));
}

TEST_F(WatchedFolderStoreTest, UnpinsEveryEntryOfAFileWrittenByHand) {
    home.write("data/Cairnfield/watched-folders.json",
               R"({"schemaVersion":3,"folders":[],"samples":{},"pinnedWorktreePaths":["/w","/v","/w"]})");
    wait(store.setPinned(false, FilePath("/w")));
    EXPECT_THAT(load().pinnedWorktreePaths, ElementsAre(FilePath("/v")));
    EXPECT_EQ(loadAgain().schemaVersion, 3) << "the version is written back as it was read";
}

TEST_F(WatchedFolderStoreTest, ReadsABadFileAsNothingUntilItIsReplaced) {
    home.write("data/Cairnfield/watched-folders.json", "{\"schemaVersion\":1,\"folders\":[]}");
    EXPECT_EQ(load(), WatchedFolderFile());
    const WatchedFolder folder = add("/p/one");
    EXPECT_THAT(loadAgain().folders, ElementsAre(folder));
}

TEST_F(WatchedFolderStoreTest, PassesAFailedWriteOnAndKeepsTheOldContent) {
    const WatchedFolder folder = add("/p/one");
    fs::remove(file.bytes());
    fs::create_directory(file.bytes());
    EXPECT_THROW(add("/p/two"), std::system_error);
    EXPECT_THROW(record(folder, result(1)), std::system_error);
    EXPECT_THAT(wait(store.folders()), ElementsAre(folder));
    EXPECT_THAT(wait(store.samples(folder.path)), IsEmpty());
}

}  // namespace
}  // namespace cairnfield
