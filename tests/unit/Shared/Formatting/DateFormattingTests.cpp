#include "Shared/Formatting/DateFormatting.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

/// 2026-11-21T15:04:30Z
constexpr Date now{std::chrono::sys_days{std::chrono::year{2026} / 11 / 21} + 15h + 4min + 30s};

TEST(DateFormatting, ReadsNeverForAnAbsentDate) {
    EXPECT_EQ(DateFormatting::absolute(std::nullopt), "Never");
    EXPECT_EQ(DateFormatting::relative(std::nullopt, now), "Never");
}

TEST(DateFormatting, AbbreviatesTheDateAndShortensTheTime) {
    EXPECT_EQ(DateFormatting::absolute(now), "Nov 21, 2026, 3:04\u202FPM");
}

TEST(DateFormatting, FollowsTheTimeZone) {
    {
        const ScopedEnvironment zone("TZ", "America/New_York");
        EXPECT_EQ(DateFormatting::absolute(now), "Nov 21, 2026, 10:04\u202FAM");
    }
    EXPECT_EQ(DateFormatting::absolute(now), "Nov 21, 2026, 3:04\u202FPM");
}

TEST(DateFormatting, FollowsTheLocale) {
    const ScopedEnvironment german("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(DateFormatting::absolute(now), "21.11.2026, 15:04");
    EXPECT_EQ(DateFormatting::relative(now - 5min, now), "vor 5 Min.");
}

TEST(DateFormatting, CountsInTheLargestWholeUnit) {
    const std::vector<std::pair<Date::duration, std::string>> known{
        {5s, "5 sec. ago"},      {59s, "59 sec. ago"},         {60s, "1 min. ago"},
        {5min, "5 min. ago"},    {59min + 59s, "59 min. ago"}, {1h, "1 hr. ago"},
        {25h, "1 day ago"},      {3 * 24h, "3 days ago"},      {8 * 24h, "1 wk. ago"},
        {45 * 24h, "1 mo. ago"}, {400 * 24h, "1 yr. ago"}};
    for (const auto& [age, text] : known) EXPECT_EQ(DateFormatting::relative(now - age, now), text);
}

TEST(DateFormatting, TellsWhatIsStillToCome) {
    EXPECT_EQ(DateFormatting::relative(now + 49h, now), "in 2 days");
    EXPECT_EQ(DateFormatting::relative(now + 5min, now), "in 5 min.");
}

TEST(DateFormatting, CountsNothingAsNoSeconds) {
    EXPECT_EQ(DateFormatting::relative(now, now), "in 0 sec.");
    EXPECT_EQ(DateFormatting::relative(now - 400ms, now), "0 sec. ago");
}

TEST(DateFormatting, MayBeUsedByManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                EXPECT_EQ(DateFormatting::absolute(now), "Nov 21, 2026, 3:04\u202FPM");
                EXPECT_EQ(DateFormatting::relative(now - 5min, now), "5 min. ago");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace cairnfield
