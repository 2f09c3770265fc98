#include "Shared/Time/CalendarDays.h"

#include <cstdlib>
#include <ctime>

namespace cairnfield {

std::optional<Date> addingCalendarDays(Date date, std::int64_t days) {
    constexpr std::int64_t reach = 300'000;  // days; a Date spans fewer
    if (days > reach || days < -reach) return std::nullopt;
    const auto whole = std::chrono::floor<std::chrono::seconds>(date);
    const std::time_t start = whole.time_since_epoch().count();
    std::tm calendar{};
    if (localtime_r(&start, &calendar) == nullptr) return std::nullopt;
    calendar.tm_mday += static_cast<int>(days);
    calendar.tm_isdst = -1;
    calendar.tm_wday = -1;  // stays only when the date cannot be told
    const std::time_t end = std::mktime(&calendar);
    if (calendar.tm_wday < 0) return std::nullopt;
    const std::chrono::sys_seconds moved{std::chrono::seconds(end)};
    if (moved <= std::chrono::ceil<std::chrono::seconds>(Date::min())) return std::nullopt;
    if (moved >= std::chrono::floor<std::chrono::seconds>(Date::max())) return std::nullopt;
    return Date(moved) + (date - Date(whole));
}

}  // namespace cairnfield
