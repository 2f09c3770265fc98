#include "Shared/Concurrency/ContinuousClock.h"

#include "Shared/Concurrency/Reactor.h"

namespace cairnfield {

Task<> ContinuousClock::sleep(Duration duration) {
    co_await sleepUntil(BootClock::add(now(), duration));
}

ContinuousClock::Instant ReactorClock::now() const {
    return BootClock::now();
}

Task<> ReactorClock::sleepUntil(Instant instant) {
    const Wake wake = co_await reactor_.until(instant);
    if (wake == Wake::cancelled) throw Cancelled();
}

}  // namespace cairnfield
