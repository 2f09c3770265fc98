#include "Models/StorageHistory.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

const StorageHistorySample sample{Date(1'000'000'000s), 250, 1000};

TEST(StorageHistorySample, IsWhatAReadingSaid) {
    const StorageSnapshot snapshot{FilePath("/"), "System", 1000, 250, Date(1'000'000'000s)};
    EXPECT_EQ(StorageHistorySample::of(snapshot), sample);
}

TEST(StorageHistoryFile, GoesThroughJSON) {
    const StorageHistoryFile file{1, {sample, {Date(1'000'000'300s), -1, 0}}};
    const Json json = file;
    EXPECT_EQ(json.dump(),
              R"({"samples":[{"availableBytes":250,"date":"2001-09-09T01:46:40Z","totalBytes":1000},)"
              R"({"availableBytes":-1,"date":"2001-09-09T01:51:40Z","totalBytes":0}],"schemaVersion":1})");
    EXPECT_EQ(json.get<StorageHistoryFile>(), file);
}

TEST(StorageHistoryFile, NeedsAllOfItsKeys) {
    const Json whole = StorageHistoryFile{1, {sample}};
    for (const char* key : {"schemaVersion", "samples"}) {
        Json broken = whole;
        broken.erase(key);
        EXPECT_THROW((void)broken.get<StorageHistoryFile>(), Json::exception) << key;
    }
    for (const char* key : {"date", "availableBytes", "totalBytes"}) {
        Json broken = whole;
        broken["samples"][0].erase(key);
        EXPECT_THROW((void)broken.get<StorageHistoryFile>(), Json::exception) << key;
    }
}

TEST(StorageHistoryFile, TakesNoValueOfAnotherType) {
    for (
        const char* text :
        {R"({"schemaVersion":1,"samples":[{"date":7,"availableBytes":1,"totalBytes":1}]})",
         R"({"schemaVersion":1,"samples":[{"date":"yesterday","availableBytes":1,"totalBytes":1}]})",
         R"({"schemaVersion":1,"samples":[{"date":"2001-09-09T01:46:40Z","availableBytes":1.5,"totalBytes":1}]})",
         R"({"schemaVersion":1,"samples":[{"date":"2001-09-09T01:46:40Z","availableBytes":1,"totalBytes":1e30}]})",
         R"({"schemaVersion":"1","samples":[]})", R"({"schemaVersion":1,"samples":{"a":1}})", "[]", "7"})
        EXPECT_THROW((void)Json::parse(text).get<StorageHistoryFile>(), Json::exception) << text;
}

}  // namespace
}  // namespace cairnfield
