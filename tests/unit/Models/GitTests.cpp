#include "Models/Git.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <utility>
#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

TEST(GitRemoteURL, NamesTheHostOfAURL) {
    const std::vector<std::pair<std::string, std::string>> known{
        {"https://github.com/owner/name.git", "github.com"},
        {"  https://github.com/owner/name.git\n", "github.com"},
        {"ssh://git@git.example.org:2222/owner/name", "git.example.org"},
        {"https://user:p@ss@host.example/x", "host.example"},
        {"git://GitHub.COM/x", "GitHub.COM"},
        {"ssh://git@[2001:db8::1]:22/x", "2001:db8::1"},
        {"git+ssh://host/x", "host"},
        {"https://host", "host"},
        {"https://host?x", "host"},
        {"https://host:/x", "host"}};
    for (const auto& [url, host] : known) EXPECT_EQ(GitRemoteURL::host(url), host) << url;
}

TEST(GitRemoteURL, NamesTheHostOfTheShortForm) {
    EXPECT_EQ(GitRemoteURL::host("git@github.com:owner/name.git"), "github.com");
    EXPECT_EQ(GitRemoteURL::host("github.com:owner/name"), "github.com");
    EXPECT_EQ(GitRemoteURL::host("user@host:22/name"), "host");
    EXPECT_EQ(GitRemoteURL::host("host:owner/na@me"), "host") << "nothing but a name follows the sign";
    EXPECT_EQ(GitRemoteURL::host("ssh://git@host:owner/name"), "host") << "a port that is none";
}

TEST(GitRemoteURL, NamesNoHostOfALocalPath) {
    for (const char* url : {"", " \n", "/srv/git/name.git", "/srv/a:b", "../name", "./a:b", "name", "@:x",
                            ":x", "a/b:c", "user@:name"})
        EXPECT_EQ(GitRemoteURL::host(url), std::nullopt) << url;
}

TEST(GitRemote, KnowsTheHostingServiceByItsPushAddress) {
    const auto isGitHub = [](std::string pushURL) {
        return GitRemote{"origin", "/elsewhere", std::move(pushURL)}.isGitHub();
    };
    EXPECT_TRUE(isGitHub("git@github.com:a/b"));
    EXPECT_TRUE(isGitHub("https://ssh.github.com:443/a/b"));
    EXPECT_TRUE(isGitHub("https://github.example.org/a/b"));
    EXPECT_TRUE(isGitHub("https://my-github/a/b"));
    EXPECT_FALSE(isGitHub("https://gitlab.com/github/b"));
    EXPECT_FALSE(isGitHub("/srv/github.com/b"));
}

TEST(GitStatusSummary, IsCleanWithoutAnyCount) {
    EXPECT_TRUE(GitStatusSummary().isClean());
    EXPECT_FALSE((GitStatusSummary{.stagedCount = 1}).isClean());
    EXPECT_FALSE((GitStatusSummary{.modifiedCount = 1}).isClean());
    EXPECT_FALSE((GitStatusSummary{.untrackedCount = 1}).isClean());
    EXPECT_FALSE((GitStatusSummary{.conflictedCount = 1}).isClean());
    EXPECT_TRUE((GitStatusSummary{.ignoredPaths = {"build/"}}).isClean());
    EXPECT_TRUE((GitStatusSummary{.conflictedCount = 1}).hasConflicts());
    EXPECT_FALSE(GitStatusSummary().hasConflicts());
}

TEST(GitOperationInProgress, HasItsNames) {
    using enum GitOperationInProgress;
    EXPECT_EQ(rawValue(merge), "merge");
    EXPECT_EQ(rawValue(rebase), "rebase");
    EXPECT_EQ(displayName(cherryPick), "cherry-pick");
    EXPECT_EQ(rawValue(revert), "revert");
    EXPECT_EQ(rawValue(bisect), "bisect");
}

TEST(PullRequestState, HasItsWordsAndIsReadBack) {
    using enum PullRequestState;
    const std::vector<std::pair<PullRequestState, std::string>> known{
        {open, "Open"}, {merged, "Merged"}, {closed, "Closed"}, {draft, "Draft"}};
    for (const auto& [state, words] : known) {
        EXPECT_EQ(title(state), words);
        EXPECT_EQ(pullRequestStateFromRawValue(rawValue(state)), state);
    }
    EXPECT_EQ(rawValue(draft), "draft");
    EXPECT_EQ(pullRequestStateFromRawValue("OPEN"), std::nullopt);
}

TEST(PullRequestInfo, GoesThroughJSON) {
    PullRequestInfo info{7,        "Title", PullRequestState::merged, true, "https://x/7", "head", "main",
                         Date(1s), {}};
    const Json json = info;
    EXPECT_EQ(
        json.dump(),
        R"({"baseRefName":"main","headRefName":"head","isDraft":true,"mergedAt":"1970-01-01T00:00:01Z",)"
        R"("number":7,"state":"merged","title":"Title","url":"https://x/7"})");
    EXPECT_EQ(json.get<PullRequestInfo>(), info);
}

TEST(PullRequestInfo, ReadsNullsAsAbsentAndRefusesOddValues) {
    Json json = PullRequestInfo{7, "Title", PullRequestState::open, false, "u", "h", "b", {}, {}};
    json["mergedAt"] = nullptr;
    EXPECT_EQ(json.get<PullRequestInfo>().mergedAt, std::nullopt);
    json["state"] = "reopened";
    EXPECT_THROW((void)json.get<PullRequestInfo>(), Json::exception);
    json["state"] = "open";
    json.erase("number");
    EXPECT_THROW((void)json.get<PullRequestInfo>(), Json::exception);
}

TEST(GitRecords, AreWrittenWithTheirFieldNames) {
    GitWorktreeEntry entry;
    entry.path = FilePath("/w");
    entry.branch = "main";
    entry.isMain = true;
    EXPECT_EQ(Json(entry).dump(),
              R"({"branch":"main","isBare":false,"isDetached":false,"isLocked":false,"isMain":true,)"
              R"("isPrunable":false,"path":"/w"})");
    EXPECT_EQ(Json(GitRemote{"origin", "f", "p"}).dump(),
              R"({"fetchURL":"f","name":"origin","pushURL":"p"})");
    EXPECT_EQ(Json(RemoteTrackingState()).dump(),
              R"({"ahead":0,"behind":0,"headIsRemotelyPreserved":false,"reachableFromDefaultBranch":false})");
    RemoteTrackingState tracking;
    tracking.uniqueCommitCount = 0;
    tracking.baseRef = "origin/main";
    EXPECT_EQ(Json(tracking)["uniqueCommitCount"], 0);
    EXPECT_EQ(Json(tracking)["baseRef"], "origin/main");
    EXPECT_EQ(
        Json(GitStatusSummary{.stagedCount = 2, .changedPaths = {"a"}}).dump(),
        R"({"changedPaths":["a"],"conflictedCount":0,"ignoredPaths":[],"modifiedCount":0,"stagedCount":2,)"
        R"("untrackedCount":0,"untrackedPaths":[]})");
}

TEST(GitRecords, CanBeWrittenWhateverGitPrinted) {
    GitWorktreeEntry entry;
    entry.path = FilePath("/\xFF");
    entry.branch = entry.lockReason = entry.prunableReason = entry.head = "\xFF";
    RemoteTrackingState tracking;
    tracking.remoteName = tracking.upstreamBranch = tracking.defaultBranch = tracking.baseRef = "\xFF";
    const PullRequestInfo info{7, "\xFF", PullRequestState::open, false, "\xFF", "\xFF", "\xFF", {}, {}};
    const GitStatusSummary summary{
        .ignoredPaths = {"\xFF"}, .changedPaths = {"\xFF"}, .untrackedPaths = {"\xFF"}};
    EXPECT_NO_THROW((void)Json(entry).dump());
    EXPECT_NO_THROW((void)Json(tracking).dump());
    EXPECT_NO_THROW((void)Json(info).dump());
    EXPECT_NO_THROW((void)Json(summary).dump());
    EXPECT_NO_THROW((void)Json(GitRemote{"\xFF", "\xFF", "\xFF"}).dump());
    EXPECT_EQ(Json(entry)["branch"], "\uFFFD");
}

}  // namespace
}  // namespace cairnfield
