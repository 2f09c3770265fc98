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

TEST(Date, RefusesDatesThatItCannotHold) {
    EXPECT_EQ(dateFromISO8601("9999-12-31T23:59:59Z"), std::nullopt);
    EXPECT_EQ(dateFromISO8601("0001-01-01T00:00:00Z"), std::nullopt);
    EXPECT_TRUE(dateFromISO8601("2262-04-11T00:00:00Z"));
    EXPECT_TRUE(dateFromISO8601("1677-09-22T00:00:00Z"));
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
