// What is left when there is no room for one byte more: the old file, whole.

#include "Models/JSON.h"
#include "Persistence/StorageHistoryStore.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/SmallDisk.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string availableBytes(const std::vector<StorageHistorySample>& samples) {
    std::string text;
    for (const StorageHistorySample& sample : samples) text += std::to_string(sample.availableBytes) + " ";
    return text;
}

std::ptrdiff_t filesIn(const FilePath& folder) {
    const fs::directory_iterator entries(folder.bytes());
    return std::distance(begin(entries), end(entries));
}

TEST(FullDisk, KeepsTheOldHistoryWholeAndGivesTheNewSampleAlone) {
    const auto outcome = onSmallDisk(std::size_t{512} * 1024, [](const FilePath& disk) {
        ThreadPool pool(1);
        const ApplicationSupport support(disk.appending("data"), disk.appending("config"));
        const FilePath file = support.directory().appending("storage-history.json");
        StorageHistoryStore store(pool, support);
        Date now{1'000'000'000s};
        const auto record = [&](std::int64_t available) {
            now += 5min;
            return availableBytes(waitFor(pool, store.record({FilePath("/"), "root", 1000, available, now})));
        };
        std::string text = record(1) + "| " + record(2);
        const std::string before = contentOf(file);
        const FilePath filler = fillDisk(disk);
        text += "| " + record(3) + "| " + record(4);
        text += contentOf(file) == before ? "| whole " : "| damaged ";
        text += std::to_string(filesIn(support.directory()));
        text += " | " + availableBytes(waitFor(pool, store.samples()));
        fs::remove(filler.bytes());
        return text + "| " + record(5);
    });
    if (!outcome) GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(*outcome, "1 | 1 2 | 3 | 4 | whole 1 | 1 2 | 1 2 5 ");
}

TEST(FullDisk, StartsWithoutAFolderOfItsOwn) {
    const auto outcome = onSmallDisk(std::size_t{64} * 1024, [](const FilePath& disk) {
        ThreadPool pool(1);
        const ApplicationSupport support(disk.appending("data"), disk.appending("config"));
        StorageHistoryStore store(pool, support);
        const FilePath filler = fillDisk(disk);
        const Date now{1'000'000'000s};
        std::string text = availableBytes(waitFor(pool, store.record({FilePath("/"), "root", 1000, 1, now})));
        text += "| " + availableBytes(waitFor(pool, store.samples()));
        fs::remove(filler.bytes());
        const StorageSnapshot later{FilePath("/"), "root", 1000, 2, now + 5min};
        return text + "| " + availableBytes(waitFor(pool, store.record(later)));
    });
    if (!outcome) GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(*outcome, "1 | | 2 ");
}

}  // namespace
}  // namespace cairnfield
