#pragma once
// A volume whose free space the test sets. Read on any thread, set on the test's.

#include "Services/Storage/VolumeCapacityReading.h"

#include <mutex>
#include <optional>
#include <system_error>

namespace cairnfield {

class FakeVolume final : public VolumeCapacityReading {
public:
    explicit FakeVolume(const WallClock& clock) : clock_(clock) {}

    [[nodiscard]] StorageSnapshot snapshot(const FilePath& url) const override {
        const std::lock_guard lock(mutex_);
        ++readings_;
        if (failure_) throw std::system_error(*failure_, "statvfs");
        return {.volumeURL = url,
                .volumeName = name_,
                .totalCapacity = total_,
                .availableCapacity = available_,
                .measuredAt = clock_.now()};
    }

    /// Bytes.
    void set(std::int64_t available, std::int64_t total) {
        const std::lock_guard lock(mutex_);
        available_ = available;
        total_ = total;
        failure_.reset();
    }
    void setName(std::string name) {
        const std::lock_guard lock(mutex_);
        name_ = std::move(name);
    }
    void fail(std::errc failure) {
        const std::lock_guard lock(mutex_);
        failure_ = std::make_error_code(failure);
    }
    [[nodiscard]] int readings() const {
        const std::lock_guard lock(mutex_);
        return readings_;
    }

private:
    const WallClock& clock_;
    mutable std::mutex mutex_;  // guards all below
    mutable int readings_ = 0;
    std::string name_ = "Home";
    std::int64_t available_ = 300'000'000'000;
    std::int64_t total_ = 500'000'000'000;
    std::optional<std::error_code> failure_;
};

}  // namespace cairnfield
