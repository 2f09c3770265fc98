#include "Persistence/SettingsStore.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/SteppedClock.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace cairnfield {
namespace {

using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
namespace fs = std::filesystem;
using namespace std::string_literals;

std::optional<DefaultsValue> wrote(DefaultsValue value) {
    return value;
}

class FileUserDefaultsTest : public testing::Test {
protected:
    std::optional<DefaultsValue> readAgain(const FilePath& file, std::string_view key) {
        const FileUserDefaults again(file, background, clock);
        return again.value(key);
    }

    TemporaryDirectory home;
    ThreadPool background{2};
    SteppedClock clock;
};

TEST_F(FileUserDefaultsTest, KeepsEachTypeApart) {
    const FilePath file = home.path().appending("config/Cairnfield/settings.json");
    const std::vector<std::pair<std::string, DefaultsValue>> values{
        {"bool", true},
        {"integer", std::int64_t(30)},
        {"largest", std::numeric_limits<std::int64_t>::max()},
        {"smallest", std::numeric_limits<std::int64_t>::min()},
        {"fraction", 0.1},
        {"whole", 7.0},
        {"text", std::string("cairnfield/recovery")},
        {"bytes", std::string("/opt/caf\xE9/git")},
        {"empty", std::string()},
        {"data", DefaultsData{"\"smart\""}},
        {"anyData", DefaultsData{"\0\xFF"s}}};
    {
        FileUserDefaults defaults(file, background, clock);
        for (const auto& [key, value] : values) defaults.set(key, value);
        for (const auto& [key, value] : values) EXPECT_EQ(defaults.value(key), wrote(value)) << key;
    }
    const FileUserDefaults again(file, background, clock);
    for (const auto& [key, value] : values) EXPECT_EQ(again.value(key), wrote(value)) << key;
}

TEST_F(FileUserDefaultsTest, WritesSortedIndentedJSONForTheUserAlone) {
    const FilePath file = home.path().appending("config/Cairnfield/settings.json");
    FileUserDefaults defaults(file, background, clock);
    EXPECT_FALSE(fs::exists(file.bytes())) << "nothing was set";
    defaults.set("thresholdMode", DefaultsData{"\"smart\""});
    defaults.set("monitoringEnabled", true);
    defaults.set("growthRelativeFraction", 1.0);
    defaults.flushBlocking();
    EXPECT_EQ(
        contentOf(file),
        "{\n  \"growthRelativeFraction\": 1.0,\n  \"monitoringEnabled\": true,\n  \"thresholdMode\": {\n"
        "    \"data\": \"InNtYXJ0Ig==\"\n  }\n}\n");
    EXPECT_EQ(fs::status(file.bytes()).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(file.parent().bytes()).permissions(), fs::perms(0700));
}

TEST_F(FileUserDefaultsTest, ReadsAFileWrittenByHand) {
    const FileUserDefaults defaults(home.write("settings.json", "{\"a\":true,\n\n\t\"b\" : 3 , \"c\":\"x\"}"),
                                    background, clock);
    EXPECT_EQ(defaults.value("a"), wrote(true));
    EXPECT_EQ(defaults.value("b"), wrote(std::int64_t(3)));
    EXPECT_EQ(defaults.value("c"), wrote("x"s));
    EXPECT_EQ(defaults.value("d"), std::nullopt);
}

TEST_F(FileUserDefaultsTest, RemovesAKey) {
    const FilePath file = home / "settings.json";
    FileUserDefaults defaults(file, background, clock);
    defaults.set("a", true);
    defaults.set("b", true);
    defaults.remove("a");
    defaults.remove("unknown");
    EXPECT_EQ(defaults.value("a"), std::nullopt);
    defaults.flushBlocking();
    EXPECT_EQ(readAgain(file, "a"), std::nullopt);
    EXPECT_EQ(readAgain(file, "b"), wrote(true));
}

TEST_F(FileUserDefaultsTest, ReadsOddValuesAsAbsentAndKeepsThem) {
    const FilePath file = home.write(
        "settings.json", R"({"list":[1],"nothing":null,"object":{"x":1},"notData":{"data":7},)"
                         R"("badData":{"data":"!"},"mixed":{"data":"","x":1},"huge":18446744073709551615})");
    FileUserDefaults defaults(file, background, clock);
    for (const char* key : {"list", "nothing", "object", "notData", "badData", "mixed", "huge"})
        EXPECT_EQ(defaults.value(key), std::nullopt) << key;
    defaults.set("ours", true);
    defaults.flushBlocking();
    EXPECT_THAT(contentOf(file), HasSubstr("18446744073709551615"));
    EXPECT_THAT(contentOf(file), HasSubstr("\"nothing\": null"));
}

TEST_F(FileUserDefaultsTest, KeepsAGarbledFileAsideAtTheNextWrite) {
    for (const char* garbled : {"{\"a\":true", "[1,2]", "", "\xFF\xFE", "7"}) {
        const TemporaryDirectory own;
        const FilePath file = own.write("settings.json", garbled);
        CaptureStderr();
        FileUserDefaults defaults(file, background, clock);
        const std::string log = GetCapturedStderr();
        EXPECT_THAT(log, HasSubstr("[persistence] Failed to decode settings.json: "));
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
        EXPECT_EQ(defaults.value("a"), std::nullopt);
        EXPECT_EQ(contentOf(file), garbled);
        defaults.set("b", true);
        defaults.flushBlocking();
        EXPECT_EQ(readAgain(file, "b"), wrote(true));
        EXPECT_EQ(contentOf(own / "settings.json.damaged"), garbled);
        EXPECT_EQ(fs::status((own / "settings.json.damaged").bytes()).permissions(), fs::perms(0600));
    }
}

TEST_F(FileUserDefaultsTest, TakesAFileThatIsNestedWithoutEndForNone) {
    const std::string odd = R"("odd": [[{"a": [1]}]])";
    const FilePath file = home.write("settings.json", R"({"text": "kept", )" + odd + "}");
    EXPECT_EQ(readAgain(file, "text"), wrote(std::string("kept")));

    constexpr std::size_t levels = 2000;  // of which each would be written on a line of its own, indented
    const std::string deep = std::string(levels, '[') + std::string(levels, ']');
    (void)home.write("settings.json", R"({"text": "lost", "odd": )" + deep + "}");
    CaptureStderr();
    FileUserDefaults defaults(file, background, clock);
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("Failed to decode settings.json"));
    EXPECT_EQ(defaults.value("text"), std::nullopt);
    defaults.set("bool", true);
    defaults.flushBlocking();
    EXPECT_EQ(contentOf(file), "{\n  \"bool\": true\n}\n");
}

TEST_F(FileUserDefaultsTest, StartsEmptyWithoutALogLine) {
    CaptureStderr();
    const FileUserDefaults defaults(home.path().appending("missing/settings.json"), background, clock);
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(defaults.value("a"), std::nullopt);
}

TEST_F(FileUserDefaultsTest, RemovesWhatACrashLeft) {
    const FilePath leftover = home.write("settings.json.tmpAb3dE9");
    const FileUserDefaults defaults(home / "settings.json", background, clock);
    EXPECT_FALSE(fs::exists(leftover.bytes()));
}

TEST(UnwritableUserDefaults, KeepAValueInForceThatTheyCannotWrite) {
    const TemporaryDirectory home;
    fs::permissions(home.path().bytes(), fs::perms(0755));
    const FilePath file = home.write("settings.json", "{}");
    const std::string outcome = asUnprivilegedUser([&] {
        ThreadPool background(1);
        SteppedClock clock;
        FileUserDefaults defaults(file, background, clock);
        defaults.set("a", true);
        return defaults.value("a") == wrote(true) ? "in force"s : "lost"s;
    });
    EXPECT_EQ(outcome, "in force");
    EXPECT_EQ(contentOf(file), "{}");
}

TEST_F(FileUserDefaultsTest, CarriesEverySettingThroughARestart) {
    const FilePath file = home / "settings.json";
    {
        FileUserDefaults defaults(file, background, clock);
        SettingsStore settings(defaults);
        settings.thresholdMode.set(ThresholdMode::absolute);
        settings.warningPercentage.set(1);
        settings.warningAbsoluteBytes.set(7);
        settings.monitoringEnabled.set(false);
        settings.recoveryBranchPrefix.set("mine");
        settings.gitPathOverride.set("/opt/\xFF/git");
        settings.gitHubCLIPathOverride.set("/opt/gh");
        settings.gitHubCLIPathOverride.set(std::nullopt);
    }
    FileUserDefaults defaults(file, background, clock);
    const SettingsStore settings(defaults);
    EXPECT_EQ(settings.thresholdMode.get(), ThresholdMode::absolute);
    EXPECT_DOUBLE_EQ(settings.warningPercentage.get(), 1);
    EXPECT_EQ(settings.warningAbsoluteBytes.get(), 7);
    EXPECT_FALSE(settings.monitoringEnabled.get());
    EXPECT_EQ(settings.recoveryBranchPrefix.get(), "mine");
    EXPECT_EQ(settings.gitPathOverride.get(), "/opt/\xFF/git");
    EXPECT_EQ(settings.gitHubCLIPathOverride.get(), std::nullopt);
    EXPECT_TRUE(settings.createDraftPullRequests.get());
}

}  // namespace
}  // namespace cairnfield
