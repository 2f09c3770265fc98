#include "Services/Cleanup/RecoveryBranchNaming.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <ctime>

namespace cairnfield {
namespace {

using RecoveryBranchNaming::branchName;
using RecoveryBranchNaming::sanitize;

Date moment(const char* text) {
    return *dateFromISO8601(text);
}

TEST(RecoveryBranchName, HoldsPrefixRepositoryAndMoment) {
    EXPECT_EQ(branchName("cairnfield/recovery", "my-app", moment("2026-01-31T17:45:02Z")),
              "cairnfield/recovery/my-app/20260131-174502");
    EXPECT_EQ(branchName("my prefix/", "a b", moment("2026-12-01T00:00:00Z")),
              "my prefix//a-b/20261201-000000")
        << "the prefix goes in as it stands";
    EXPECT_EQ(branchName("p", "r", moment("2026-01-31T17:45:02Z") + std::chrono::milliseconds(999)),
              "p/r/20260131-174502");
}

TEST(RecoveryBranchName, IsTheSameInEveryTimeZoneAndLocale) {
    for (const char* zone : {"UTC", "XST-14", "YST12", "CET-1CEST,M3.5.0,M10.5.0/3"}) {
        const ScopedEnvironment where("TZ", zone);
        const ScopedEnvironment language("LC_ALL", "ar_EG.UTF-8");
        tzset();
        EXPECT_EQ(branchName("p", "r", moment("2026-01-31T17:45:02Z")), "p/r/20260131-174502") << zone;
    }
    tzset();
}

TEST(RecoveryBranchName, SanitizesTheRepository) {
    EXPECT_EQ(sanitize("My_App-1.2"), "My_App-1.2");
    EXPECT_EQ(sanitize("a  b"), "a-b") << "a run is one dash";
    EXPECT_EQ(sanitize("a -b"), "a--b") << "a dash of the name's own is kept";
    EXPECT_EQ(sanitize("a- b"), "a--b");
    EXPECT_EQ(sanitize("M\xC3\xB3j projekt"), "M-j-projekt");
    EXPECT_EQ(sanitize("Mo\xCC\x81j projekt"), "M-j-projekt") << "an accent belongs to its letter";
    EXPECT_EQ(sanitize("\xE6\x97\xA5\xE6\x9C\xAC app"), "app");
    EXPECT_EQ(sanitize("a\xFF\xFE/..~^:?*[\\\nb"), "a-..-b");
    EXPECT_EQ(sanitize("a/b@{c}"), "a-b-c");
}

TEST(RecoveryBranchName, HasNoDashesAndDotsAtItsEnds) {
    EXPECT_EQ(sanitize("..a.."), "a");
    EXPECT_EQ(sanitize("-.-a-b-.-"), "a-b");
    EXPECT_EQ(sanitize("(a)"), "a");
    EXPECT_EQ(sanitize("..."), "worktree");
    EXPECT_EQ(sanitize(""), "worktree");
    EXPECT_EQ(sanitize("\xE6\x97\xA5"), "worktree");
}

TEST(RecoveryBranchName, EndsInNoLockOnce) {
    EXPECT_EQ(sanitize("foo.lock"), "foo");
    EXPECT_EQ(sanitize("foo-.lock"), "foo-") << "the ends are not trimmed again";
    EXPECT_EQ(sanitize("foo.lock.lock"), "foo.lock");
    EXPECT_EQ(sanitize("foo.lock."), "foo");
    EXPECT_EQ(sanitize(".lock"), "lock");
    EXPECT_EQ(sanitize("foo.LOCK"), "foo.LOCK");
}

TEST(RecoveryBranchName, HasAtMostSixtyCharacters) {
    EXPECT_EQ(sanitize(std::string(60, 'a')), std::string(60, 'a'));
    EXPECT_EQ(sanitize(std::string(61, 'a')), std::string(60, 'a'));
    EXPECT_EQ(sanitize(std::string(59, 'a') + "-b"), std::string(59, 'a') + "-")
        << "the cut may leave a dash";
    EXPECT_EQ(sanitize(std::string(59, 'a') + ".b"), std::string(59, 'a') + ".");
}

TEST(RecoveryBranchName, IsKnownFromAnotherMoment) {
    using RecoveryBranchNaming::differInTheirMomentAlone;
    const std::string name = "cairnfield/recovery/app/20260131-174502";
    EXPECT_TRUE(differInTheirMomentAlone("cairnfield/recovery/app/20250101-000000", name));
    EXPECT_TRUE(differInTheirMomentAlone(name, name));
    for (const char* other :
         {"cairnfield/recovery/apps/20250101-000000", "cairnfield/recovery/20250101-000000", "app",
          "other/recovery/app/20250101-000000", "cairnfield/recovery/app/20250101-00000x",
          "cairnfield/recovery/app/20250101x000000", "cairnfield/recovery/app/20250101-0000000",
          "cairnfield/recovery/app/20250101-00000", "cairnfield/recovery/app/"}) {
        EXPECT_FALSE(differInTheirMomentAlone(other, name)) << other;
        EXPECT_FALSE(differInTheirMomentAlone(name, other)) << other;
    }
}

}  // namespace
}  // namespace cairnfield
