#pragma once

#include "Shared/Concurrency/ContinuousClock.h"

#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace cairnfield {

/// A clock that stands still until the test steps it. From any thread.
///
/// A test lets the code under test go to sleep, waits until it has (`waitForSleepers`, or a loop run until
/// `sleepers()` says so), then steps. A step is one jump: who wakes and sleeps again counts from the new
/// time.
class SteppedClock final : public ContinuousClock {
public:
    explicit SteppedClock(Instant start = Instant(std::chrono::hours(1))) : now_(start) {}
    /// Nobody may be asleep any more.
    ~SteppedClock() override;

    [[nodiscard]] Instant now() const override;
    Task<> sleepUntil(Instant instant) override;

    /// Wakes, in the order of their instants, all whose time has come.
    void advance(Duration duration);

    [[nodiscard]] std::size_t sleepers() const;
    /// How long the first sleeper still has; none when nobody sleeps.
    [[nodiscard]] std::optional<Duration> nextWakeIn() const;
    /// How long each sleeper still has, the first to wake first.
    [[nodiscard]] std::vector<Duration> wakesIn() const;
    /// Blocks until at least so many are asleep. Not on a thread that they need in order to get there.
    void waitForSleepers(std::size_t count);

private:
    class Sleep;
    using Sleeps = std::multimap<Instant, Sleep*>;

    mutable std::mutex mutex_;
    std::condition_variable arrival_;
    Instant now_;    // guarded by mutex_
    Sleeps sleeps_;  // guarded by mutex_
};

}  // namespace cairnfield
