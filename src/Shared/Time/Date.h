#pragma once
// Instants of the calendar, as the user's clock tells them, and their one text form in files. For waiting and
// for time limits, which must not follow a clock that is set, see ContinuousClock in Shared/Concurrency.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

using Date = std::chrono::system_clock::time_point;
using Seconds = std::chrono::duration<double>;

/// The current time as a service sees it; a test gives one that it can set. Callable from any thread.
class WallClock {
public:
    virtual ~WallClock() = default;
    [[nodiscard]] virtual Date now() const = 0;
};

class SystemWallClock final : public WallClock {
public:
    [[nodiscard]] Date now() const override { return std::chrono::system_clock::now(); }
};

/// "2026-11-21T14:50:47Z": UTC, the fraction of a second dropped towards the past.
[[nodiscard]] std::string iso8601(Date date);

/// Reads what iso8601 writes, and the other usual spellings: a fraction of a second (dropped), a numeric
/// zone, a leap second (read as the second after it), and years of more digits or before the year 0. A date
/// that a Date cannot hold reads as distantPast() or distantFuture(), whichever is nearer. Absent for
/// anything else.
[[nodiscard]] std::optional<Date> dateFromISO8601(std::string_view text);

/// The first whole second that a Date can hold, in the year 1677.
[[nodiscard]] Date distantPast();

/// Later than anything that will happen: the last whole second that a Date can hold, in the year 2262.
[[nodiscard]] Date distantFuture();

/// Seconds from `earlier` to `later`, negative when they stand the other way round.
[[nodiscard]] double secondsBetween(Date earlier, Date later);

}  // namespace cairnfield
