#include "Models/JSON.h"
#include "Persistence/StorageHistoryStore.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "Shared/Logging/Log.h"
#include "support/CapturedLog.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <random>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

using Samples = std::vector<StorageHistorySample>;

constexpr auto day = 24h;
const Date start{1'000'000'000s};

class StorageHistoryStoreTest : public testing::Test {
protected:
    Samples record(Date date, std::int64_t available = 1) {
        const StorageSnapshot snapshot{FilePath("/"), "root", 1000, available, date};
        return waitFor(pool, store->record(snapshot));
    }
    Samples samples() { return waitFor(pool, store->samples()); }
    void restart() { store.emplace(pool, support); }
    static StorageHistorySample sample(Date date, std::int64_t available = 1) {
        return {date, available, 1000};
    }
    void writeFile(const Samples& samples) const {
        home.write("data/Cairnfield/storage-history.json", Json(StorageHistoryFile{1, samples}).dump());
    }

    TemporaryDirectory home;
    ThreadPool pool{2};
    const ApplicationSupport support{home.path().appending("data"), home.path().appending("config")};
    const FilePath file = support.directory().appending("storage-history.json");
    std::optional<StorageHistoryStore> store{std::in_place, pool, support};
};

TEST_F(StorageHistoryStoreTest, IsEmptyAtTheFirstRun) {
    EXPECT_THAT(samples(), IsEmpty());
    EXPECT_FALSE(fs::exists(file.bytes()));
}

TEST_F(StorageHistoryStoreTest, KeepsReadingsInTheirOrderAndSavesThem) {
    EXPECT_THAT(record(start, 7), ElementsAre(sample(start, 7)));
    EXPECT_THAT(record(start + 5min, 8), ElementsAre(sample(start, 7), sample(start + 5min, 8)));
    restart();
    EXPECT_THAT(samples(), ElementsAre(sample(start, 7), sample(start + 5min, 8)));
    EXPECT_EQ(contentOf(file),
              "{\n"
              "  \"samples\": [\n"
              "    {\n"
              "      \"availableBytes\": 7,\n"
              "      \"date\": \"2001-09-09T01:46:40Z\",\n"
              "      \"totalBytes\": 1000\n"
              "    },\n"
              "    {\n"
              "      \"availableBytes\": 8,\n"
              "      \"date\": \"2001-09-09T01:51:40Z\",\n"
              "      \"totalBytes\": 1000\n"
              "    }\n"
              "  ],\n"
              "  \"schemaVersion\": 1\n"
              "}\n");
}

TEST_F(StorageHistoryStoreTest, KeepsTheNewestOfABurst) {
    record(start, 7);
    EXPECT_THAT(record(start + 59s, 8), ElementsAre(sample(start + 59s, 8)));
    EXPECT_THAT(record(start + 119s, 9), ElementsAre(sample(start + 59s, 8), sample(start + 119s, 9)))
        << "exactly the spacing";
}

TEST_F(StorageHistoryStoreTest, DropsWhatIsOlderThanThirtyDays) {
    record(start, 1);
    EXPECT_EQ(record(start + 30 * day, 2).size(), 2U) << "as old as the retention";
    EXPECT_THAT(record(start + 30 * day + 61s, 3),
                ElementsAre(sample(start + 30 * day, 2), sample(start + 30 * day + 61s, 3)));
}

TEST_F(StorageHistoryStoreTest, HoldsFourThousandSamples) {
    Samples full;
    for (int i = 0; i < 4000; ++i) full.push_back(sample(start + i * 5min, i));
    writeFile(full);
    const Samples after = record(start + 4000 * 5min, 4000);
    ASSERT_EQ(after.size(), 4000U);
    EXPECT_EQ(after.front().availableBytes, 1) << "the oldest went";
    EXPECT_EQ(after.back().availableBytes, 4000);
}

TEST_F(StorageHistoryStoreTest, ReplacesTheLastSampleWhenTheClockWasSetBack) {
    record(start, 1);
    record(start + 5min, 2);
    EXPECT_THAT(record(start - 365 * day, 3), ElementsAre(sample(start, 1), sample(start - 365 * day, 3)));
    EXPECT_THAT(record(start - 365 * day + 5min, 4).size(), 3U) << "and goes on from there";
    restart();
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(StorageHistoryStoreTest, StartsAnewWhenTheClockWasSetAheadByAYear) {
    record(start, 1);
    EXPECT_THAT(record(start + 365 * day, 2), ElementsAre(sample(start + 365 * day, 2)));
    EXPECT_THAT(record(start + 5min, 3), ElementsAre(sample(start + 5min, 3))) << "and back again";
}

TEST_F(StorageHistoryStoreTest, HoldsDatesAtTheEndsOfTheCalendar) {
    writeFile(
        {sample(*dateFromISO8601("1677-09-22T00:00:00Z")), sample(*dateFromISO8601("2262-04-10T00:00:00Z"))});
    EXPECT_THAT(record(start, 3), ElementsAre(sample(start, 3)));
}

TEST_F(StorageHistoryStoreTest, ReadsAGarbledFileAsEmptyUntilItIsReplaced) {
    for (const char* garbled : {"", "{", "\xff\xfe", "[]", R"({"samples":[]})",
                                R"({"schemaVersion":1,"samples":[{"date":"2001-09-09T01:46:40Z"}]})"}) {
        home.write("data/Cairnfield/storage-history.json", garbled);
        restart();
        const CapturedLog log(Log::persistence());
        EXPECT_THAT(samples(), IsEmpty()) << garbled;
        EXPECT_THAT(samples(), IsEmpty());
        EXPECT_THAT(log.text(), testing::StartsWith("error: Failed to decode storage-history.json: "));
        EXPECT_EQ(std::ranges::count(log.text(), '\n'), 1) << "one line";
        EXPECT_EQ(contentOf(file), garbled) << "it stays on disk";
        EXPECT_THAT(record(start, 5), ElementsAre(sample(start, 5)));
        restart();
        EXPECT_THAT(samples(), ElementsAre(sample(start, 5)));
    }
}

TEST_F(StorageHistoryStoreTest, GivesTheNewSampleAloneWhenNothingCanBeWritten) {
    record(start, 1);
    const std::string before = contentOf(file);
    const std::string aside = file.bytes() + ".aside";
    fs::rename(file.bytes(), aside);
    fs::create_directory(file.bytes());
    EXPECT_THAT(record(start + 5min, 2), ElementsAre(sample(start + 5min, 2)));
    EXPECT_THAT(samples(), ElementsAre(sample(start, 1))) << "the cache keeps the old content";

    fs::remove(file.bytes());
    fs::rename(aside, file.bytes());
    EXPECT_EQ(contentOf(file), before);
    EXPECT_THAT(record(start + 10min, 3), ElementsAre(sample(start, 1), sample(start + 10min, 3)))
        << "the old history returns";
}

TEST_F(StorageHistoryStoreTest, LosesNoReadingOfManyCallers) {
    store.emplace(pool, support, 30, -1h);  // so that none replaces another, in whatever order they come
    std::vector<Task<Samples>> callers;
    callers.reserve(20);
    for (int i = 0; i < 20; ++i)
        callers.push_back(store->record({FilePath("/"), "root", 1000, i, start + i * 60s}));
    waitFor(pool, whenAll(std::move(callers)));
    restart();
    EXPECT_EQ(samples().size(), 20U);
}

// The rules in their plainest form.
class PlainHistory {
public:
    PlainHistory(double retentionDays, std::chrono::seconds spacing, std::size_t maximum)
        : retention_(std::chrono::seconds(static_cast<std::int64_t>(retentionDays * 86400))),
          spacing_(spacing),
          maximum_(maximum) {}

    const Samples& record(StorageHistorySample sample) {
        if (!samples_.empty() && sample.date - samples_.back().date < spacing_) samples_.pop_back();
        samples_.push_back(sample);
        Samples kept;
        for (const StorageHistorySample& old : samples_)
            if (!(old.date < sample.date - retention_)) kept.push_back(old);
        while (kept.size() > maximum_) kept.erase(kept.begin());
        samples_ = kept;
        return samples_;
    }

private:
    std::chrono::seconds retention_;
    std::chrono::seconds spacing_;
    std::size_t maximum_;
    Samples samples_;
};

TEST_F(StorageHistoryStoreTest, AgreesWithAPlainListWhateverTheClockDoes) {
    for (unsigned seed = 1; seed <= 8 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        const auto between = [&random](std::int64_t least, std::int64_t most) {
            return std::uniform_int_distribution(least, most)(random);
        };
        fs::remove(file.bytes());
        const double retention = seed % 3 == 0 ? 0.5 : 30;
        const auto spacing = std::chrono::seconds(seed % 2 == 0 ? 60 : 300);
        const std::size_t maximum = seed % 4 == 0 ? 5 : 40;
        store.emplace(pool, support, retention, spacing, maximum);
        PlainHistory plain(retention, spacing, maximum);
        Date now = start;
        for (std::int64_t i = 0; i < 60; ++i) {
            const std::int64_t way = between(0, 29);
            now += std::chrono::seconds(way == 0   ? between(-400, 400) * 86400
                                        : way == 1 ? between(-1, 1) * spacing.count()
                                        : way < 8  ? between(0, 90)
                                                   : between(290, 7200));
            const Samples expected = plain.record(sample(now, i));
            ASSERT_EQ(record(now, i), expected) << "reading " << i;
            if (way == 2) store.emplace(pool, support, retention, spacing, maximum);
        }
    }
}

}  // namespace
}  // namespace cairnfield
