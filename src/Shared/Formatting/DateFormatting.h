#pragma once
// Dates as a person reads them, in the user's locale and time zone. An absent date reads "Never". Any thread.

#include "Shared/Time/Date.h"

#include <optional>
#include <string>

namespace cairnfield::DateFormatting {

/// "Nov 21, 2026, 3:04 PM": an abbreviated date with a short time.
[[nodiscard]] std::string absolute(std::optional<Date> date);

/// "5 min. ago", "in 2 days": the distance to `now` in its largest whole unit.
[[nodiscard]] std::string relative(std::optional<Date> date, Date now);

}  // namespace cairnfield::DateFormatting
