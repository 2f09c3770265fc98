#include "Services/GitHub/GitHubCLIOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace cairnfield {
namespace {

using GitHubCLIOutput::decodeDefaultBranch;
using GitHubCLIOutput::decodePullRequests;
using GitHubCLIOutput::mostRelevant;
using GitHubCLIOutput::numberInURL;
using GitHubCLIOutput::parseAuthenticatedHosts;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// The report of `gh auth status` in the shapes that it has had.

TEST(GitHubLoginReport, OfGenerationOne) {
    EXPECT_THAT(parseAuthenticatedHosts(
                    "github.com\n"
                    "  \xE2\x9C\x93 Logged in to github.com as robin (/home/robin/.config/gh/hosts.yml)\n"
                    "  \xE2\x9C\x93 Git operations for github.com configured to use https protocol.\n"
                    "  \xE2\x9C\x93 Token: *******************\n"),
                ElementsAre("github.com"));
}

TEST(GitHubLoginReport, OfGenerationTwoWithAccounts) {
    EXPECT_THAT(parseAuthenticatedHosts(
                    "code.example.org\n"
                    "  X Failed to log in to code.example.org account robin (keyring)\n"
                    "  - Active account: true\n"
                    "  - The token in keyring is invalid.\n"
                    "  - To re-authenticate, run: gh auth login -h code.example.org\n"
                    "\n"
                    "github.com\n"
                    "  \xE2\x9C\x93 Logged in to github.com account robin (keyring)\n"
                    "  - Active account: true\n"
                    "  \xE2\x9C\x93 Logged in to github.com account wren (/home/robin/.config/gh/hosts.yml)\n"
                    "  - Active account: false\n"),
                ElementsAre("github.com"))
        << "one host, signed in twice, beside one that failed";
}

TEST(GitHubLoginReport, WithoutALogin) {
    EXPECT_THAT(
        parseAuthenticatedHosts("You are not logged into any GitHub hosts. To log in, run: gh auth login\n"),
        IsEmpty());
    EXPECT_THAT(parseAuthenticatedHosts("github.com\n  X github.com: authentication failed\n"), IsEmpty());
    EXPECT_THAT(parseAuthenticatedHosts(""), IsEmpty());
}

TEST(GitHubLoginReport, KeepsTheOrderOfTheText) {
    EXPECT_THAT(parseAuthenticatedHosts("Logged in to z.example as a\nLogged in to a.example as a\n"
                                        "Logged in to z.example as b"),
                ElementsAre("z.example", "a.example"));
}

TEST(GitHubLoginReport, TrimsPunctuationAroundTheHost) {
    EXPECT_THAT(parseAuthenticatedHosts("Logged in to github.com: as robin"), ElementsAre("github.com"));
    EXPECT_THAT(parseAuthenticatedHosts("LOGGED IN TO ,:Github.com,, robin\r\n"), ElementsAre("Github.com"));
    EXPECT_THAT(parseAuthenticatedHosts("\tlogged in to\tgithub.com\tas robin"), ElementsAre("github.com"));
}

TEST(GitHubLoginReport, SkipsALineWithoutAHost) {
    EXPECT_THAT(parseAuthenticatedHosts("Logged in to"), IsEmpty());
    EXPECT_THAT(parseAuthenticatedHosts("Logged in to \n"), IsEmpty());
    EXPECT_THAT(parseAuthenticatedHosts("Logged in to :, as robin"), IsEmpty());
    EXPECT_THAT(parseAuthenticatedHosts("xlogged in tox github.com"), IsEmpty()) << "no word \"to\"";
}

TEST(GitHubLoginReport, ReadsTheWordAfterTheFirstTo) {
    EXPECT_THAT(parseAuthenticatedHosts("Talking to a.example: logged in to b.example"),
                ElementsAre("a.example"));
}

TEST(GitHubOutput, TakesOneLine) {
    EXPECT_EQ(GitHubCLIOutput::firstLine("\n gh version 2.23.0 (2023-02-27)\r\nhttps://example.org\n"),
              "gh version 2.23.0 (2023-02-27)");
    EXPECT_EQ(GitHubCLIOutput::firstLine(""), "");
    EXPECT_EQ(GitHubCLIOutput::lastLine("Warning: 1 uncommitted change\n\nhttps://h/p/pull/3\n"),
              "https://h/p/pull/3");
    EXPECT_EQ(GitHubCLIOutput::lastLine("one"), "one");
    EXPECT_EQ(GitHubCLIOutput::lastLine(" \n"), "");
}

TEST(GitHubDefaultBranch, IsTheNameOfTheReference) {
    EXPECT_EQ(decodeDefaultBranch(R"({"defaultBranchRef":{"name":"trunk"}})"), "trunk");
    EXPECT_EQ(decodeDefaultBranch(R"({"defaultBranchRef":{"name":"a/b","more":1},"other":[]})"), "a/b");
}

TEST(GitHubDefaultBranch, IsAbsentInEverythingElse) {
    for (const char* text :
         {"", "null", "[]", "{}", "7", R"("main")", R"({"defaultBranchRef":null})",
          R"({"defaultBranchRef":"main"})", R"({"defaultBranchRef":{}})",
          R"({"defaultBranchRef":{"name":7}})", R"({"defaultBranchRef":{"name":""}})",
          R"({"defaultBranchRef":{"name":"main"}})"
          "x",
          R"({"defaultBranchRef":{"name":"main")", "{\"defaultBranchRef\":{\"name\":\"\xFF\"}}"})
        EXPECT_EQ(decodeDefaultBranch(text), std::nullopt) << text;
}

// Pull requests.

Json record(int number, const std::string& state, bool isDraft = false, const Json& mergedAt = nullptr) {
    return {{"number", number},
            {"title", "T"},
            {"state", state},
            {"isDraft", isDraft},
            {"url", "https://h/p/pull/" + std::to_string(number)},
            {"mergedAt", mergedAt},
            {"closedAt", nullptr},
            {"headRefName", "feature"},
            {"baseRefName", "main"}};
}

std::vector<PullRequestInfo> decoded(const std::vector<Json>& list) {
    return decodePullRequests(Json(list).dump());
}

std::int64_t chosenAmong(const std::vector<Json>& list) {
    const std::optional<PullRequestInfo> chosen = mostRelevant(decoded(list));
    return chosen ? chosen->number : 0;
}

TEST(GitHubPullRequests, HaveAllTheirFields) {
    const std::vector<PullRequestInfo> list = decodePullRequests(
        R"([{"baseRefName":"main","closedAt":"2024-05-06T07:08:09Z","headRefName":"feature","isDraft":false,)"
        R"("mergedAt":"2024-05-06T07:08:08Z","number":4,"state":"MERGED","title":"Tïtle \"4\"",)"
        R"("url":"https://h/p/pull/4"}])");
    ASSERT_THAT(list, SizeIs(1));
    EXPECT_EQ(list[0].number, 4);
    EXPECT_EQ(list[0].title, "Tïtle \"4\"");
    EXPECT_EQ(list[0].state, PullRequestState::merged);
    EXPECT_FALSE(list[0].isDraft);
    EXPECT_EQ(list[0].url, "https://h/p/pull/4");
    EXPECT_EQ(list[0].headRefName, "feature");
    EXPECT_EQ(list[0].baseRefName, "main");
    EXPECT_EQ(list[0].mergedAt, dateFromISO8601("2024-05-06T07:08:08Z"));
    EXPECT_EQ(list[0].closedAt, dateFromISO8601("2024-05-06T07:08:09Z"));
}

TEST(GitHubPullRequests, ReadTheStateInAnyCase) {
    const std::vector<Json> list{
        record(1, "OPEN"),         record(2, "OPEN", true), record(3, "MERGED"),
        record(4, "MERGED", true), record(5, "CLOSED"),     record(6, "open"),
        record(7, "Merged"),       record(8, "QUEUED"),     record(9, "CLOSED", true)};
    std::vector<PullRequestState> states;
    for (const PullRequestInfo& info : decoded(list)) states.push_back(info.state);
    using enum PullRequestState;
    EXPECT_THAT(states, ElementsAre(open, draft, merged, merged, closed, open, merged, closed, closed));
}

TEST(GitHubPullRequests, MayLackTheirDates) {
    Json without = record(1, "OPEN");
    without.erase("mergedAt");
    without.erase("closedAt");
    EXPECT_EQ(decoded({without})[0].mergedAt, std::nullopt);
    EXPECT_EQ(decoded({record(1, "CLOSED", false, "0001-01-01T00:00:00Z")})[0].mergedAt, std::nullopt)
        << "an empty date as some versions print it";
}

TEST(GitHubPullRequests, FailForAMissingOrOddField) {
    for (const char* key : {"number", "title", "state", "isDraft", "url", "headRefName", "baseRefName"}) {
        Json bad = record(1, "OPEN");
        bad.erase(key);
        EXPECT_THROW((void)decoded({bad}), Json::exception) << "without " << key;
        bad[key] = nullptr;
        EXPECT_THROW((void)decoded({bad}), Json::exception) << "null " << key;
        bad[key] = Json::array();
        EXPECT_THROW((void)decoded({bad}), Json::exception) << "list " << key;
    }
    for (const Json& date : {Json("yesterday"), Json(""), Json(7), Json("2024-13-01T00:00:00Z"),
                             Json("0001-01-01"), Json("99999-13-01T00:00:00Z")})
        EXPECT_THROW((void)decoded({record(1, "MERGED", false, date)}), Json::exception) << date;
    Json large = record(1, "OPEN");
    large["number"] = 1e300;
    EXPECT_THROW((void)decoded({large}), Json::exception);
}

TEST(GitHubPullRequests, FailForWhatIsNoList) {
    for (const char* text : {"", "{}", "null", "7", "\"x\"", "[", "[]]", "[{}]", "[null]", "[[]]", "<html>",
                             "no pull requests match your search", "[\"\xFF\"]"})
        EXPECT_THROW((void)decodePullRequests(text), Json::exception) << text;
    EXPECT_THROW((void)decodePullRequests(std::string(1'000'000, '[')), Json::exception);
    std::string deep(200'000, '[');
    deep += std::string(200'000, ']');
    EXPECT_THROW((void)decodePullRequests(deep), Json::exception);
    EXPECT_THAT(decodePullRequests(" [] \n"), IsEmpty());
}

TEST(GitHubPullRequests, FailAtEveryPlaceWhereTheTextEndsEarly) {
    const std::string whole = Json{record(1, "OPEN"), record(2, "MERGED")}.dump();
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THROW((void)decodePullRequests(whole.substr(0, length)), Json::exception) << length;
    EXPECT_THAT(decodePullRequests(whole), SizeIs(2));
}

TEST(GitHubPullRequests, TheOpenOneGoesBeforeAMergedOne) {
    EXPECT_EQ(chosenAmong(
                  {record(9, "MERGED", false, "2026-01-01T00:00:00Z"), record(3, "OPEN"), record(2, "OPEN")}),
              3);
    EXPECT_EQ(chosenAmong({record(9, "CLOSED"), record(3, "OPEN", true)}), 3);
    EXPECT_EQ(chosenAmong({record(9, "MERGED", false, "2026-01-01T00:00:00Z"), record(3, "CLOSED", true)}), 3)
        << "a draft counts also when it was closed";
}

TEST(GitHubPullRequests, OfTwoClosedOnesTheFirstGoesBefore) {
    EXPECT_EQ(chosenAmong({record(5, "CLOSED"), record(9, "CLOSED")}), 5);
}

TEST(GitHubPullRequests, OfTwoMergedOnesTheOneMergedLastGoesBefore) {
    EXPECT_EQ(chosenAmong({record(5, "MERGED", false, "2025-01-01T00:00:00Z"), record(7, "CLOSED"),
                           record(6, "MERGED", false, "2025-01-02T00:00:00Z")}),
              6);
    EXPECT_EQ(chosenAmong({record(5, "MERGED", false, "2025-01-01T00:00:00Z"),
                           record(6, "MERGED", false, "2025-01-01T00:00:00Z")}),
              5);
    EXPECT_EQ(chosenAmong({record(7, "CLOSED"), record(5, "MERGED", false, "1700-01-01T00:00:00Z")}), 5);
}

TEST(GitHubPullRequests, OfNoneNoneIsChosen) {
    EXPECT_EQ(mostRelevant({}), std::nullopt);
}

TEST(GitHubPullRequestURL, EndsInTheNumber) {
    EXPECT_EQ(numberInURL("https://github.com/robin/project/pull/512"), 512);
    EXPECT_EQ(numberInURL("512"), 512);
    for (const char* text : {"", "https://h/p/pull/", "https://h/p/pull/12/", "https://h/p/pull/12?a=b",
                             "https://h/p/pull/twelve", "https://h/p/pull/12x", "https://h/p/pull/ 12",
                             "https://h/p/pull/99999999999999999999"})
        EXPECT_EQ(numberInURL(text), 0) << text;
}

}  // namespace
}  // namespace cairnfield
