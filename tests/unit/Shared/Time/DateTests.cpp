#include "Shared/Time/Date.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

/// 2026-11-21T14:50:47Z
constexpr Date moment{std::chrono::sys_days{std::chrono::year{2026} / 11 / 21} + 14h + 50min + 47s};

TEST(Date, IsWrittenInWholeSecondsOfUTC) {
    EXPECT_EQ(iso8601(moment), "2026-11-21T14:50:47Z");
    EXPECT_EQ(iso8601(moment + 999'999'999ns), "2026-11-21T14:50:47Z");
    EXPECT_EQ(iso8601(Date()), "1970-01-01T00:00:00Z");
}

TEST(Date, DropsTheFractionTowardsThePast) {
    EXPECT_EQ(iso8601(Date() - 1ns), "1969-12-31T23:59:59Z");
}

TEST(Date, ReadsWhatItWrites) {
    for (const Date date : {moment, Date(), Date() - 24h, moment + 24h * 100})
        EXPECT_EQ(dateFromISO8601(iso8601(date)), date);
}

TEST(Date, ReadsTheOtherUsualSpellings) {
    EXPECT_EQ(dateFromISO8601("2026-11-21T14:50:47.123456Z"), moment);
    EXPECT_EQ(dateFromISO8601("2026-11-21T16:50:47+02:00"), moment);
    EXPECT_EQ(dateFromISO8601("2026-11-21T16:50:47+0200"), moment);
    EXPECT_EQ(dateFromISO8601("2026-11-21T16:50:47+02"), moment);
    EXPECT_EQ(dateFromISO8601("2026-11-21T09:20:47.9-05:30"), moment);
    EXPECT_EQ(dateFromISO8601("2024-02-29T00:00:00Z"),
              Date(std::chrono::sys_days{std::chrono::year{2024} / 2 / 29}));
}

TEST(Date, ReadsNothingElse) {
    for (const char* text : {"",
                             "2026-11-21",
                             "2026-11-21T14:50:47",
                             "2026-11-21 14:50:47Z",
                             "2026-11-21T14:50Z",
                             "2026-13-21T14:50:47Z",
                             "2026-02-29T00:00:00Z",
                             "2026-00-10T00:00:00Z",
                             "2026-11-31T00:00:00Z",
                             "2026-11-21T24:00:00Z",
                             "2026-11-21T14:60:47Z",
                             "2026-11-21T14:50:60Z",
                             "2026-11-21T14:50:47.Z",
                             "2026-11-21T14:50:47ZZ",
                             "2026-11-21T14:50:47+02:60",
                             "2026-11-21T14:50:47+24:00",
                             "2026-11-21T14:50:47+02:",
                             "2026-11-21T14:50:47+2",
                             "+2026-11-21T14:50:47Z",
                             " 2026-11-21T14:50:47Z",
                             "2026-1-21T14:50:47Z",
                             "1763736647",
                             "2026-11-2\xFFT14:50:47Z"})
        EXPECT_EQ(dateFromISO8601(text), std::nullopt) << text;
}

TEST(Date, HoldsWhatItCannotReachAtTheNearerEnd) {
    for (const char* text :
         {"2262-04-11T23:47:17Z", "2262-04-12T00:00:00Z", "2262-12-31T00:00:00Z", "2263-01-01T00:00:00Z",
          "9999-12-31T23:59:59Z", "9999-12-31T23:59:59.999-12:00", "10000-01-01T00:00:00Z",
          "+10000-02-29T00:00:00Z", "99999999999999999999-01-01T00:00:00Z"})
        EXPECT_EQ(dateFromISO8601(text), distantFuture()) << text;
    for (const char* text : {"1677-09-21T00:12:43Z", "1677-01-01T00:00:00Z", "1676-12-31T23:59:59Z",
                             "0001-01-01T00:00:00Z", "0000-02-29T00:00:00Z", "-0044-03-15T12:00:00Z",
                             "-0004-02-29T00:00:00Z", "-99999999999999999999-01-01T00:00:00Z"})
        EXPECT_EQ(dateFromISO8601(text), distantPast()) << text;
}

TEST(Date, ReachesFromEndToEndInWholeSeconds) {
    EXPECT_EQ(iso8601(distantFuture()), "2262-04-11T23:47:16Z");
    EXPECT_EQ(iso8601(distantPast()), "1677-09-21T00:12:44Z");
    for (const Date end : {distantFuture(), distantPast()}) EXPECT_EQ(dateFromISO8601(iso8601(end)), end);
    EXPECT_EQ(dateFromISO8601("2262-04-11T23:47:15Z"), distantFuture() - 1s);
    EXPECT_EQ(dateFromISO8601("1677-09-21T00:12:45Z"), distantPast() + 1s);
}

TEST(Date, ReadsALeapSecondAsTheSecondAfterIt) {
    const Date newYear = *dateFromISO8601("2017-01-01T00:00:00Z");
    EXPECT_EQ(dateFromISO8601("2016-12-31T23:59:60Z"), newYear);
    EXPECT_EQ(dateFromISO8601("2016-12-31T23:59:60.5Z"), newYear);
    EXPECT_EQ(dateFromISO8601("2017-01-01T00:59:60+01:00"), newYear);
    EXPECT_EQ(dateFromISO8601("2016-12-31T23:59:60+01:00"), std::nullopt) << "not at the end of a day of UTC";
}

TEST(Date, ReadsNoGarbageBeyondWhatItCanHoldEither) {
    for (const char* text :
         {"9999-13-01T00:00:00Z", "9999-02-29T00:00:00Z", "10000-1-01T00:00:00Z", "-004-01-01T00:00:00Z",
          "+9999-01-01T00:00:00Z", "--0044-01-01T00:00:00Z", "9999-12-31T23:59:59", "99999-12-31T23:59:61Z",
          "-0001-02-29T00:00:00Z", "99999-12-31T23:59:59.Z"})
        EXPECT_EQ(dateFromISO8601(text), std::nullopt) << text;
}

TEST(Date, CountsSecondsBetweenTwoDates) {
    EXPECT_DOUBLE_EQ(secondsBetween(moment, moment + 1500ms), 1.5);
    EXPECT_DOUBLE_EQ(secondsBetween(moment + 2h, moment), -7200);
    EXPECT_DOUBLE_EQ(secondsBetween(Date() - 500ms, Date() + 500ms), 1);
    EXPECT_DOUBLE_EQ(secondsBetween(moment, moment), 0);
}

TEST(Date, CountsSecondsBetweenTheFarthestDates) {
    EXPECT_NEAR(secondsBetween(Date::min(), Date::max()), 18'446'744'073.7, 0.1);
    EXPECT_NEAR(secondsBetween(Date::max(), Date::min()), -18'446'744'073.7, 0.1);
}

TEST(SystemWallClock, TellsTheTimeOfTheSystem) {
    const Date before = std::chrono::system_clock::now();
    const Date told = SystemWallClock().now();
    EXPECT_LE(before, told);
    EXPECT_LE(told, std::chrono::system_clock::now());
}

}  // namespace
}  // namespace cairnfield
