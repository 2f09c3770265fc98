#pragma once
// The user's clock in a test: it stands still until it is set. Any thread.

#include "Shared/Time/Date.h"

#include <mutex>

namespace cairnfield {

class SettableWallClock final : public WallClock {
public:
    explicit SettableWallClock(Date now = std::chrono::sys_days(std::chrono::January / 5 / 2026))
        : now_(now) {}

    [[nodiscard]] Date now() const override {
        const std::lock_guard lock(mutex_);
        return now_;
    }
    void set(Date now) {
        const std::lock_guard lock(mutex_);
        now_ = now;
    }
    void advance(Date::duration by) { set(now() + by); }

private:
    mutable std::mutex mutex_;
    Date now_;  // guarded by mutex_
};

}  // namespace cairnfield
