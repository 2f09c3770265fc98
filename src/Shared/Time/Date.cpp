#include "Shared/Time/Date.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace cairnfield {

namespace {

/// Takes exactly `digits` decimal digits off the front.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
    if (text.size() < digits) return std::nullopt;
    int number = 0;
    for (const char c : text.substr(0, digits)) {
        if (c < '0' || c > '9') return std::nullopt;
        number = number * 10 + (c - '0');
    }
    text.remove_prefix(digits);
    return number;
}

bool take(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

/// Two-digit number below `limit`, after `separator` unless that is absent.
std::optional<int> takeField(std::string_view& text, std::optional<char> separator, int limit) {
    if (separator && !take(text, *separator)) return std::nullopt;
    const std::optional<int> number = takeNumber(text, 2);
    if (!number || *number >= limit) return std::nullopt;
    return number;
}

/// Four digits, or more for a year that does not fit into them; a sign stands before a negative one, and
/// before one of more than four. Held within a million years, beyond which all are alike.
std::optional<int> takeYear(std::string_view& text) {
    constexpr int farthest = 1'000'000;
    const bool isNegative = take(text, '-');
    const bool hasPlus = !isNegative && take(text, '+');
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits < 4 || (hasPlus && digits == 4)) return std::nullopt;
    int year = 0;
    for (const char c : text.substr(0, digits)) year = std::min(year * 10 + (c - '0'), farthest);
    text.remove_prefix(digits);
    return isNegative ? -year : year;
}

struct CalendarDay {
    int year;
    unsigned month;
    unsigned day;
};

std::optional<CalendarDay> takeDay(std::string_view& text) {
    const std::optional<int> year = takeYear(text);
    const std::optional<int> month = takeField(text, '-', 13);
    const std::optional<int> day = takeField(text, '-', 32);
    if (!year || !month || !day) return std::nullopt;
    const CalendarDay read{*year, static_cast<unsigned>(*month), static_cast<unsigned>(*day)};
    // The calendar repeats itself every 400 years.
    const std::chrono::year alike(2000 + read.year % 400);
    if (!(alike / std::chrono::month(read.month) / std::chrono::day(read.day)).ok()) return std::nullopt;
    return read;
}

/// A fraction needs at least one digit.
bool skipFraction(std::string_view& text) {
    if (!take(text, '.')) return true;
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(digits);
    return digits > 0;
}

/// "Z", "+02:00", "+0200" or "+02"; nothing may follow.
std::optional<std::chrono::minutes> takeZone(std::string_view text) {
    if (text == "Z") return std::chrono::minutes(0);
    const int sign = text.starts_with('-') ? -1 : 1;
    if (!take(text, '+') && !take(text, '-')) return std::nullopt;
    const std::optional<int> hours = takeField(text, std::nullopt, 24);
    if (!hours) return std::nullopt;
    std::optional<int> minutes = 0;
    if (!text.empty()) {
        take(text, ':');
        minutes = takeField(text, std::nullopt, 60);
    }
    if (!minutes || !text.empty()) return std::nullopt;
    return std::chrono::minutes(sign * (*hours * 60 + *minutes));
}

}  // namespace

std::string iso8601(Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const auto days = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day day(days);
    const std::chrono::hh_mm_ss time(seconds - days);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

std::optional<Date> dateFromISO8601(std::string_view text) {
    const std::optional<CalendarDay> day = takeDay(text);
    const std::optional<int> hour = takeField(text, 'T', 24);
    const std::optional<int> minute = takeField(text, ':', 60);
    const std::optional<int> second = takeField(text, ':', 61);
    if (!day || !hour || !minute || !second || !skipFraction(text)) return std::nullopt;
    const std::optional<std::chrono::minutes> zone = takeZone(text);
    if (!zone) return std::nullopt;

    const auto moment =
        std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second) - *zone;
    constexpr int leapSecond = 60;
    if (*second == leapSecond && moment % std::chrono::days(1) != std::chrono::seconds(0))
        return std::nullopt;
    // The calendar reaches further than a Date, which counts nanoseconds in 64 bits.
    constexpr int firstYear = 1677;
    constexpr int lastYear = 2262;
    if (day->year < firstYear) return distantPast();
    if (day->year > lastYear) return distantFuture();
    const std::chrono::sys_seconds instant =
        std::chrono::sys_days(std::chrono::year(day->year) / std::chrono::month(day->month) /
                              std::chrono::day(day->day)) +
        moment;
    return std::clamp<std::chrono::sys_seconds>(instant, std::chrono::ceil<std::chrono::seconds>(Date::min()),
                                                std::chrono::floor<std::chrono::seconds>(Date::max()));
}

Date distantPast() {
    return std::chrono::ceil<std::chrono::seconds>(Date::min());
}

Date distantFuture() {
    return std::chrono::floor<std::chrono::seconds>(Date::max());
}

double secondsBetween(Date earlier, Date later) {
    // The difference of two far-off dates does not fit into nanoseconds; whole seconds and the rest always
    // do.
    const Date::duration from = earlier.time_since_epoch();
    const Date::duration to = later.time_since_epoch();
    constexpr std::chrono::seconds second(1);
    return static_cast<double>(to / second - from / second) + Seconds(to % second - from % second).count();
}

}  // namespace cairnfield
