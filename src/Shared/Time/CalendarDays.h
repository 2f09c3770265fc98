#pragma once
// Counting in days of the calendar rather than in seconds. Any thread; the time zone is the user's.

#include "Shared/Time/Date.h"

#include <cstdint>
#include <optional>

namespace cairnfield {

/// The same time of day so many days later, also where the clocks are put forward or back in between. Absent
/// when a Date does not reach so far.
[[nodiscard]] std::optional<Date> addingCalendarDays(Date date, std::int64_t days);

}  // namespace cairnfield
