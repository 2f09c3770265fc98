#include "Shared/Time/CalendarDays.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

/// Sets the time zone by its rules, so that no database is needed.
class CalendarDays : public testing::Test {
protected:
    CalendarDays() { tzset(); }

    static std::string after(const char* start, std::int64_t days) {
        const std::optional<Date> end = addingCalendarDays(*dateFromISO8601(start), days);
        return end ? iso8601(*end) : "absent";
    }

    const ScopedEnvironment zone{"TZ", "CET-1CEST,M3.5.0,M10.5.0/3"};
};

TEST_F(CalendarDays, KeepTheTimeOfDay) {
    EXPECT_EQ(after("2026-01-10T12:00:00Z", 1), "2026-01-11T12:00:00Z");
    EXPECT_EQ(after("2026-01-10T12:00:00Z", 90), "2026-04-10T11:00:00Z") << "summer time began in between";
    EXPECT_EQ(after("2026-10-20T12:00:00Z", 10), "2026-10-30T13:00:00Z") << "and ended here";
}

TEST_F(CalendarDays, GoOverMonthsYearsAndLeapDays) {
    EXPECT_EQ(after("2027-12-31T20:00:00Z", 1), "2028-01-01T20:00:00Z");
    EXPECT_EQ(after("2028-02-28T08:00:00Z", 1), "2028-02-29T08:00:00Z");
    EXPECT_EQ(after("2028-01-01T08:00:00Z", 366), "2029-01-01T08:00:00Z");
    EXPECT_EQ(after("2026-01-10T12:00:00Z", -10), "2025-12-31T12:00:00Z");
}

TEST_F(CalendarDays, KeepTheFractionOfASecond) {
    const Date start = *dateFromISO8601("2026-01-10T12:00:00Z") + 123'456'789ns;
    EXPECT_EQ(addingCalendarDays(start, 2), start + 48h);
}

TEST_F(CalendarDays, EndWhereADateDoesNotReach) {
    EXPECT_EQ(after("2026-01-10T12:00:00Z", 80'000), "2245-01-22T12:00:00Z");
    EXPECT_EQ(after("2026-01-10T12:00:00Z", 100'000), "absent");
    EXPECT_EQ(after("2026-01-10T12:00:00Z", -200'000), "absent");
    EXPECT_EQ(after("2026-01-10T12:00:00Z", std::numeric_limits<std::int64_t>::max()), "absent");
    EXPECT_EQ(after("2026-01-10T12:00:00Z", std::numeric_limits<std::int64_t>::min()), "absent");
}

}  // namespace
}  // namespace cairnfield
