#include "Models/WatchedFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t gibibyte = 1'073'741'824;
constexpr Date now{1'000'000'000s};

TEST(WatchedFolder, IsMadeWithTheDefaults) {
    const WatchedFolder folder = WatchedFolder::make(FilePath("/home/me/Projects"));
    EXPECT_EQ(folder.displayName, "Projects");
    EXPECT_EQ(folder.path, FilePath("/home/me/Projects"));
    EXPECT_NE(folder.id, UUID());
    EXPECT_TRUE(folder.isEnabled);
    EXPECT_TRUE(folder.growthAlertEnabled);
    WatchedFolder plain;
    plain.id = folder.id;
    plain.displayName = folder.displayName;
    plain.path = folder.path;
    EXPECT_EQ(folder, plain) << "everything else is absent";
}

TEST(WatchedFolder, IsCalledByTextThatCanBeShown) {
    EXPECT_EQ(WatchedFolder::make(FilePath("/a/caf\xE9\n")).displayName, "caf\uFFFD␊");
    EXPECT_EQ(WatchedFolder::make(FilePath("/")).displayName, "/");
}

TEST(WatchedFolder, SnoozesUntilTheTimeHasCome) {
    WatchedFolder folder;
    EXPECT_FALSE(folder.isSnoozed(now));
    folder.snoozedUntil = now + 1s;
    EXPECT_TRUE(folder.isSnoozed(now));
    EXPECT_FALSE(folder.isSnoozed(now + 1s));
}

TEST(WatchedFolder, IsJudgedByItsOwnUpperLimits) {
    WatchedFolder folder;
    folder.warningBytes = 100;
    folder.criticalBytes = 200;
    EXPECT_EQ(folder.level(), StorageLevel::normal) << "without a size";
    folder.lastKnownSizeBytes = 99;
    EXPECT_EQ(folder.level(), StorageLevel::normal);
    folder.lastKnownSizeBytes = 100;
    EXPECT_EQ(folder.level(), StorageLevel::warning);
    folder.lastKnownSizeBytes = 200;
    EXPECT_EQ(folder.level(), StorageLevel::critical);
}

TEST(WatchedFolder, JudgesEachLimitOnItsOwn) {
    WatchedFolder folder;
    folder.lastKnownSizeBytes = 150;
    EXPECT_EQ(folder.level(), StorageLevel::normal);
    folder.criticalBytes = 200;
    EXPECT_EQ(folder.level(), StorageLevel::normal);
    folder.lastKnownSizeBytes = 250;
    EXPECT_EQ(folder.level(), StorageLevel::critical);
    folder.criticalBytes.reset();
    folder.warningBytes = 200;
    EXPECT_EQ(folder.level(), StorageLevel::warning);
}

WatchedFolderFile fullFile() {
    WatchedFolder folder = WatchedFolder::make(FilePath("/p\xFF"));
    folder.isEnabled = false;
    folder.growthAlertEnabled = false;
    folder.warningBytes = 1;
    folder.criticalBytes = 2;
    folder.lastScanAt = Date(3s);
    folder.lastKnownSizeBytes = 4;
    folder.previousSizeBytes = 5;
    folder.lastScanError = "no";
    folder.snoozedUntil = Date(6s);
    folder.bookmarkData = "\xFF bytes";
    WatchedFolderFile file;
    file.folders = {folder, WatchedFolder::make(FilePath("/q"))};
    file.samples = {{FilePath("/p\xFF"), {{Date(1s), 10}, {Date(2s), 20}}}, {FilePath("/q"), {}}};
    file.pinnedWorktreePaths = {FilePath("/p\xFF/w"), FilePath("/q/w")};
    return file;
}

TEST(WatchedFolderFile, GoesThroughJSONByteForByte) {
    const WatchedFolderFile file = fullFile();
    EXPECT_EQ(Json::parse(Json(file).dump()).get<WatchedFolderFile>(), file);
    EXPECT_EQ(Json::parse(Json(WatchedFolderFile()).dump()).get<WatchedFolderFile>(), WatchedFolderFile());
}

TEST(WatchedFolderFile, IsWrittenWithItsFieldNames) {
    EXPECT_EQ(Json(WatchedFolderFile()).dump(),
              R"({"folders":[],"pinnedWorktreePaths":[],"samples":{},"schemaVersion":1})");
    WatchedFolder folder = WatchedFolder::make(FilePath("/p"));
    folder.id = *UUID::parse("6f9619ff-8b86-d011-b42d-00c04fc964ff");
    EXPECT_EQ(Json(folder).dump(),
              R"({"displayName":"p","growthAlertEnabled":true,"id":"6F9619FF-8B86-D011-B42D-)"
              R"(00C04FC964FF","isEnabled":true,"path":"/p"})");
    EXPECT_EQ(Json(SizeSample{Date(1s), 7}).dump(), R"({"bytes":7,"date":"1970-01-01T00:00:01Z"})");
    EXPECT_EQ(Json(fullFile())["folders"][0]["bookmarkData"], "/yBieXRlcw==");
}

TEST(WatchedFolderFile, RequiresItsFourKeys) {
    for (const char* key : {"schemaVersion", "folders", "samples", "pinnedWorktreePaths"}) {
        Json json = fullFile();
        json.erase(key);
        EXPECT_THROW((void)json.get<WatchedFolderFile>(), Json::exception) << key;
    }
    Json json = fullFile();
    json["samples"] = Json::array();
    EXPECT_THROW((void)json.get<WatchedFolderFile>(), Json::exception);
}

TEST(WatchedFolderFile, AcceptsEveryVersionAndKeepsIt) {
    Json json = WatchedFolderFile();
    json["schemaVersion"] = 7;
    EXPECT_EQ(json.get<WatchedFolderFile>().schemaVersion, 7);
}

TEST(WatchedFolder, RequiresItsFiveKeysAndNoOthers) {
    for (const char* key : {"id", "displayName", "path", "isEnabled", "growthAlertEnabled"}) {
        Json json = fullFile().folders[0];
        json.erase(key);
        EXPECT_THROW((void)json.get<WatchedFolder>(), Json::exception) << key;
    }
    Json json = WatchedFolder::make(FilePath("/p"));
    json["somethingNew"] = true;
    json["lastScanAt"] = nullptr;
    EXPECT_EQ(json.get<WatchedFolder>().lastScanAt, std::nullopt);
}

TEST(WatchedFolder, RefusesValuesOfAnotherType) {
    const std::vector<std::pair<const char*, Json>> wrong{
        {"id", "x"},       {"isEnabled", 1},   {"warningBytes", 1.5},         {"lastScanAt", "yesterday"},
        {"path", nullptr}, {"displayName", 7}, {"bookmarkData", "not base64"}};
    for (const auto& [key, value] : wrong) {
        Json json = fullFile().folders[0];
        json[key] = value;
        EXPECT_THROW((void)json.get<WatchedFolder>(), Json::exception) << key;
    }
}

TEST(GrowthAnalyzer, MeasuresFromTheFirstToTheLastSampleOfTheWindow) {
    using GrowthAnalyzer::growth;
    EXPECT_EQ(growth({}, 24, now), std::nullopt);
    EXPECT_EQ(growth({{now - 25h, 1}}, 24, now), std::nullopt);
    EXPECT_EQ(growth({{now - 1h, 5}}, 24, now), 0);
    EXPECT_EQ(growth({{now - 1h, 70}, {now - 24h, 10}, {now - 25h, 1}, {now - 2h, 30}}, 24, now), 60)
        << "whatever their order, the oldest of the window included";
    EXPECT_EQ(growth({{now - 2h, 100}, {now - 1h, 40}}, 24, now), -60);
}

TEST(GrowthAnalyzer, HoldsDifferencesThatFitNoNumber) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(GrowthAnalyzer::growth({{now - 2h, least}, {now - 1h, most}}, 24, now), most);
    EXPECT_EQ(GrowthAnalyzer::growth({{now - 2h, most}, {now - 1h, least}}, 24, now), least);
}

bool grows(std::int64_t from, std::int64_t to) {
    return GrowthAnalyzer::isAnomalous({{now - 2h, from}, {now - 1h, to}}, GrowthAlertSettings(), now);
}

TEST(GrowthAnalyzer, AlarmsByTheAbsoluteAmountOrTheFraction) {
    EXPECT_FALSE(grows(20 * gibibyte, 24 * gibibyte));
    EXPECT_TRUE(grows(20 * gibibyte, 25 * gibibyte));
    EXPECT_TRUE(grows(100 * gibibyte, 105 * gibibyte));
    EXPECT_FALSE(grows(100 * gibibyte, 105 * gibibyte - 1));
    EXPECT_TRUE(grows(3 * gibibyte, 4 * gibibyte));
    EXPECT_TRUE(grows(4 * gibibyte, 5 * gibibyte)) << "exactly a quarter";
    EXPECT_FALSE(grows(4 * gibibyte, 5 * gibibyte - 1));
}

TEST(GrowthAnalyzer, NeverAlarmsFromNothingOrForAShrinkingFolder) {
    EXPECT_FALSE(grows(0, 10 * gibibyte));
    EXPECT_FALSE(grows(-1, 10 * gibibyte));
    EXPECT_FALSE(grows(10 * gibibyte, gibibyte));
    EXPECT_FALSE(grows(gibibyte, gibibyte));
    EXPECT_FALSE(GrowthAnalyzer::isAnomalous({}, GrowthAlertSettings(), now));
}

TEST(GrowthAlertSettings, HaveTheirDefaults) {
    const GrowthAlertSettings settings;
    EXPECT_EQ(settings.absoluteBytes, 5'368'709'120);
    EXPECT_DOUBLE_EQ(settings.relativeFraction, 0.25);
    EXPECT_EQ(settings.windowHours, 24);
}

}  // namespace
}  // namespace cairnfield
