#pragma once

#include <chrono>

namespace cairnfield {

/// Time since the machine started, which nobody sets and which runs on while the machine is suspended. All
/// deadlines and sleeps are on it, so that "in an hour" means an hour of the person's day.
struct BootClock {
    // NOLINTBEGIN(readability-identifier-naming): the names that std::chrono asks for
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<BootClock>;
    static constexpr bool is_steady = true;
    // NOLINTEND(readability-identifier-naming)

    [[nodiscard]] static time_point now() noexcept;

    /// The sum, or the end of time where it would go beyond.
    [[nodiscard]] static constexpr time_point add(time_point from, duration much) noexcept {
        if (much > duration::zero() && from > time_point::max() - much) return time_point::max();
        return from + much;
    }
};

/// The deadline of a wait without one.
inline constexpr BootClock::time_point noDeadline = BootClock::time_point::max();

}  // namespace cairnfield
