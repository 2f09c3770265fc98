#pragma once

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/LeafWait.h"

#include <cstddef>
#include <list>
#include <mutex>
#include <utility>

namespace cairnfield {

/// A number of permits, handed out in the order in which they were asked for. Waiting suspends, and throws
/// `Cancelled` when the task is cancelled before its turn (also when a permit is free). From any thread. It
/// outlives its permits.
class Semaphore {
public:
    class Permit;
    class Acquisition;

    explicit Semaphore(std::size_t permits) noexcept : free_(permits) {}
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// `const Semaphore::Permit permit = co_await semaphore.acquire();` holds it until the end of the block.
    [[nodiscard]] Acquisition acquire();

private:
    void release() noexcept;

    std::mutex mutex_;
    std::size_t free_;                 // guarded by mutex_; zero while anyone waits
    std::list<Acquisition*> waiting_;  // guarded by mutex_
};

/// Gives its place to the next in line when it goes.
class [[nodiscard]] Semaphore::Permit {
public:
    Permit(Permit&& other) noexcept : semaphore_(std::exchange(other.semaphore_, nullptr)) {}
    Permit& operator=(Permit&&) = delete;
    ~Permit() { release(); }

    /// Earlier than at the end; once is enough.
    void release() noexcept {
        if (semaphore_) std::exchange(semaphore_, nullptr)->release();
    }

private:
    friend class Acquisition;
    explicit Permit(Semaphore* semaphore) noexcept : semaphore_(semaphore) {}

    Semaphore* semaphore_;
};

class [[nodiscard]] Semaphore::Acquisition final : public detail::LeafWait {
public:
    explicit Acquisition(Semaphore& semaphore) noexcept : semaphore_(semaphore) {}
    Permit await_resume();

private:
    friend class Semaphore;
    enum class State { fresh, waiting, granted, stopped };

    bool link() override;
    void stop() noexcept override;

    Semaphore& semaphore_;
    State state_ = State::fresh;               // guarded by the semaphore's mutex_
    std::list<Acquisition*>::iterator place_;  // the same, and only while waiting
};

inline Semaphore::Acquisition Semaphore::acquire() {
    return Acquisition(*this);
}

}  // namespace cairnfield
