#include "Services/Cleanup/GitSettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string list(const std::vector<std::string>& entries) {
    std::string text;
    for (const std::string& entry : entries) text += entry + std::string(1, '\0');
    return text;
}

TEST(GitSettings, HoldTheRemotesOfAClone) {
    const GitSettings settings = GitSettings::parse(list(
        {"user.url\nno remote's", "core.bare\nfalse", "remote.origin.url\n/home/a\nb",
         "remote.origin.fetch\n+refs/heads/*:refs/remotes/origin/*", "remote.Up.Stream.url\nx:y", "alias"}));
    EXPECT_THAT(settings.remoteURLs, ElementsAre("/home/a\nb", "x:y"));
    EXPECT_FALSE(settings.isMirror);
    EXPECT_FALSE(settings.hasLongObjectNames);
}

TEST(GitSettings, KnowAMirrorAndLongNames) {
    EXPECT_TRUE(GitSettings::parse(list({"remote.origin.fetch\n+refs/*:refs/*"})).isMirror);
    EXPECT_FALSE(GitSettings::parse(list({"other.origin.fetch\n+refs/*:refs/*"})).isMirror);
    EXPECT_TRUE(GitSettings::parse(list({"extensions.objectformat\nsha256"})).hasLongObjectNames);
    EXPECT_FALSE(GitSettings::parse(list({"extensions.objectformat\nsha1"})).hasLongObjectNames);
    EXPECT_THAT(GitSettings::parse("").remoteURLs, IsEmpty());
}

}  // namespace
}  // namespace cairnfield
