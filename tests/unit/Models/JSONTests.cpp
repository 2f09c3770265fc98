#include "Models/DirectoryScan.h"
#include "Models/JSON.h"
#include "Models/JSONFields.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <set>

namespace cairnfield {
namespace {

using namespace std::string_literals;
using namespace std::chrono_literals;

TEST(UUID, IsWrittenInUpperCase) {
    const std::optional<UUID> read = UUID::parse("6f9619ff-8b86-d011-b42d-00c04fc964ff");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->text(), "6F9619FF-8B86-D011-B42D-00C04FC964FF");
    EXPECT_EQ(UUID::parse("6F9619FF-8B86-D011-B42D-00C04FC964FF"), read);
    EXPECT_EQ(UUID().text(), "00000000-0000-0000-0000-000000000000");
}

TEST(UUID, ReadsTheCanonicalFormAlone) {
    for (const std::string& text :
         {""s, "6F9619FF8B86D011B42D00C04FC964FF"s, "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"s,
          "6F9619FF-8B86-D011-B42D-00C04FC964FG"s, "6F9619FF-8B86-D011-B42D-00C04FC964F"s,
          "6F9619FF-8B86-D011-B42D-00C04FC964FF "s, "6F9619FF-8B86-D011-B42D-00C04FC964\0F"s})
        EXPECT_EQ(UUID::parse(text), std::nullopt) << text;
}

TEST(UUID, IsNewEachTime) {
    std::set<UUID> made;
    for (int i = 0; i < 1000; ++i) made.insert(UUID::make());
    EXPECT_EQ(made.size(), 1000U);
    EXPECT_EQ(UUID::make().text()[14], '4') << "a random one";
}

TEST(ModelsJSON, WritesPathsDatesAndIdentities) {
    EXPECT_EQ(Json(FilePath("/a/é")), "/a/é");
    EXPECT_EQ(Json(FilePath("/a\xFF")).dump(), R"("/a\u0000ff")");
    EXPECT_EQ(jsonFromDate(Date(1500ms)), "1970-01-01T00:00:01Z");
    EXPECT_EQ(Json(*UUID::parse("6f9619ff-8b86-d011-b42d-00c04fc964ff")),
              "6F9619FF-8B86-D011-B42D-00C04FC964FF");
}

TEST(ModelsJSON, ReadsThemBack) {
    EXPECT_EQ(Json("/a\0ff"s).get<FilePath>(), FilePath("/a\xFF"));
    EXPECT_EQ(dateFromJSON("1970-01-01T00:00:01Z"), Date(1s));
    EXPECT_EQ(Json("6f9619ff-8b86-d011-b42d-00c04fc964ff").get<UUID>().text(),
              "6F9619FF-8B86-D011-B42D-00C04FC964FF");
}

TEST(ModelsJSON, RefusesValuesOfAnotherKind) {
    EXPECT_THROW((void)Json(7).get<FilePath>(), Json::exception);
    EXPECT_THROW((void)Json("no identity").get<UUID>(), Json::exception);
    EXPECT_THROW((void)Json().get<UUID>(), Json::exception);
    EXPECT_THROW((void)dateFromJSON("yesterday"), Json::exception);
    EXPECT_THROW((void)dateFromJSON(1'763'736'647), Json::exception);
}

TEST(ModelsJSON, ReadsWholeNumbersExactly) {
    EXPECT_EQ(detail::integerFromJSON(Json::parse("9223372036854775807")),
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(detail::integerFromJSON(Json::parse("-9223372036854775808")),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(detail::integerFromJSON(Json::parse("5e3")), 5000);
    EXPECT_EQ(detail::integerFromJSON(Json::parse("7.0")), 7);
    for (const char* text : {"1.5", "9223372036854775808", "1e30", "-1e19", "true", "\"7\"", "null", "[7]"})
        EXPECT_THROW((void)detail::integerFromJSON(Json::parse(text)), Json::exception) << text;
}

TEST(ModelsJSON, RepairsTextSoThatItCanBeWritten) {
    EXPECT_EQ(jsonFromText("caf\xE9"), "caf\uFFFD");
    EXPECT_NO_THROW((void)jsonFromText("\xFF\xFE").dump());
}

TEST(ModelsJSON, MakesPathsPlainTextForOutput) {
    Json json = {
        {"path", FilePath("/caf\xE9/\xFF\xFE")}, {"list", {FilePath("/\xF0\x9F\x98"), 7}}, {"plain", "x"}};
    EXPECT_EQ(printable(std::move(json)).dump(), R"({"list":["/)"
                                                 "\uFFFD"
                                                 R"(",7],"path":"/caf)"
                                                 "\uFFFD/\uFFFD\uFFFD"
                                                 R"(","plain":"x"})");
}

TEST(DirectoryScanResult, IsWrittenWithItsFieldNames) {
    DirectoryScanResult result;
    result.url = FilePath("/a");
    result.totalBytes = 4096;
    result.fileCount = 2;
    result.permissionErrorPaths = {FilePath("/a/\xFF")};
    result.largestChildren = {{FilePath("/a/b"), 4096, true}};
    result.duration = 0.5;
    result.scannedAt = Date(1s);
    EXPECT_EQ(
        Json(result).dump(),
        R"({"duration":0.5,"fileCount":2,"isEstimated":true,"largestChildren":[{"bytes":4096,"isDirectory":true,)"
        R"("url":"/a/b"}],"permissionErrorPaths":["/a/\u0000ff"],"scannedAt":"1970-01-01T00:00:01Z",)"
        R"("totalBytes":4096,"url":"/a"})");
}

}  // namespace
}  // namespace cairnfield
