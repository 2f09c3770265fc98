#pragma once

#include "Shared/Concurrency/BootClock.h"
#include "Shared/Concurrency/Task.h"

namespace cairnfield {

class Reactor;

/// Time as the services and the model see it: what it is, and a way to wait for later. It runs on through
/// suspend. From any thread. Tests put one in its place that they step.
class ContinuousClock {
public:
    using Instant = BootClock::time_point;
    using Duration = BootClock::duration;

    virtual ~ContinuousClock() = default;

    [[nodiscard]] virtual Instant now() const = 0;
    /// Returns at once for an instant that has passed. Throws `Cancelled`.
    virtual Task<> sleepUntil(Instant instant) = 0;

    /// From the moment it is awaited. Throws `Cancelled`.
    Task<> sleep(Duration duration);
};

/// The real one. The reactor must outlive it.
class ReactorClock final : public ContinuousClock {
public:
    explicit ReactorClock(Reactor& reactor) noexcept : reactor_(reactor) {}

    [[nodiscard]] Instant now() const override;
    Task<> sleepUntil(Instant instant) override;

private:
    Reactor& reactor_;
};

}  // namespace cairnfield
