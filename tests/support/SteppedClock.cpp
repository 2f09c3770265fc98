#include "support/SteppedClock.h"

#include "Shared/Concurrency/LeafWait.h"

#include <cassert>

namespace cairnfield {

class [[nodiscard]] SteppedClock::Sleep final : public detail::LeafWait {
public:
    Sleep(SteppedClock& clock, Instant instant) noexcept : clock_(clock), instant_(instant) {}

    void await_resume() {
        end();
        if (state_ == State::stopped) throw Cancelled();
    }

private:
    friend class SteppedClock;
    enum class State { fresh, asleep, woken, stopped };

    bool link() override {
        const std::lock_guard lock(clock_.mutex_);
        if (state_ == State::stopped || instant_ <= clock_.now_) return false;
        place_ = clock_.sleeps_.emplace(instant_, this);
        state_ = State::asleep;
        clock_.arrival_.notify_all();
        return true;
    }

    void stop() noexcept override {
        {
            const std::lock_guard lock(clock_.mutex_);
            if (state_ == State::woken) return;
            const bool asleep = state_ == State::asleep;
            state_ = State::stopped;
            if (!asleep) return;
            clock_.sleeps_.erase(place_);
        }
        waiter()->schedule();
    }

    SteppedClock& clock_;
    const Instant instant_;
    State state_ = State::fresh;  // guarded by the clock's mutex_
    Sleeps::iterator place_;      // the same, and only while asleep
};

SteppedClock::~SteppedClock() {
    assert(sleepers() == 0 && "a sleeper outlives its clock");
}

SteppedClock::Instant SteppedClock::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

Task<> SteppedClock::sleepUntil(Instant instant) {
    co_await Sleep(*this, instant);
}

void SteppedClock::advance(Duration duration) {
    std::vector<detail::PromiseBase*> due;
    {
        const std::lock_guard lock(mutex_);
        now_ = BootClock::add(now_, duration);
        while (!sleeps_.empty() && sleeps_.begin()->first <= now_) {
            Sleep& sleep = *sleeps_.begin()->second;
            sleeps_.erase(sleeps_.begin());
            sleep.state_ = Sleep::State::woken;
            due.push_back(sleep.waiter());
        }
    }
    for (detail::PromiseBase* waiter : due) waiter->schedule();
}

std::size_t SteppedClock::sleepers() const {
    const std::lock_guard lock(mutex_);
    return sleeps_.size();
}

std::optional<SteppedClock::Duration> SteppedClock::nextWakeIn() const {
    const std::lock_guard lock(mutex_);
    if (sleeps_.empty()) return std::nullopt;
    return sleeps_.begin()->first - now_;
}

std::vector<SteppedClock::Duration> SteppedClock::wakesIn() const {
    const std::lock_guard lock(mutex_);
    std::vector<Duration> durations;
    for (const auto& [instant, sleep] : sleeps_) durations.push_back(instant - now_);
    return durations;
}

void SteppedClock::waitForSleepers(std::size_t count) {
    std::unique_lock lock(mutex_);
    arrival_.wait(lock, [this, count] { return sleeps_.size() >= count; });
}

}  // namespace cairnfield
