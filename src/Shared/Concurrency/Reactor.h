#pragma once

#include "Shared/Concurrency/BootClock.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Concurrency/LeafWait.h"
#include "Shared/Concurrency/Task.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

namespace cairnfield {

/// What ended a wait. When a descriptor is readable at the deadline, it is `ready`.
enum class Wake { ready, timeout, cancelled };

/// Waits for a readable descriptor, a deadline or cancellation, whichever is first: one thread with one epoll
/// for all of them. A wait resumes on the executor of the coroutine that waits. The thread sleeps until
/// something is due: with nothing to wait for, or only distant deadlines, it does not wake at all.
///
/// At most one task waits for a descriptor at a time, and it stays open meanwhile. A plain file counts as
/// readable. A wait that cannot be set up throws std::system_error. Nothing may wait any more when the
/// reactor is destroyed.
class Reactor {
public:
    class Wait;

    Reactor();
    ~Reactor();
    Reactor(const Reactor&) = delete;
    Reactor& operator=(const Reactor&) = delete;

    /// `const Wake wake = co_await reactor.readable(fd, deadline);` End of file and errors count as readable.
    [[nodiscard]] Wait readable(int fd, BootClock::time_point deadline = noDeadline);
    /// The same, but cancellation does not end it.
    [[nodiscard]] Wait readableShielded(int fd);
    /// Never answers `ready`. A deadline in the past is due at once.
    [[nodiscard]] Wait until(BootClock::time_point deadline);
    /// Throws `Cancelled`.
    Task<> sleep(BootClock::duration duration);

private:
    using Timers = std::multimap<BootClock::time_point, Wait*>;

    bool link(Wait& wait);
    void stop(Wait& wait) noexcept;
    void unlink(Wait& wait) noexcept;
    void setTimer() noexcept;
    void watch(int fd, std::uint64_t id, std::uint32_t events) const;
    void serve();
    void takeReady(std::uint64_t id, std::vector<detail::PromiseBase*>& due);
    void takeOverdue(std::vector<detail::PromiseBase*>& due);
    void take(Wait& wait, Wake wake, std::vector<detail::PromiseBase*>& due);

    const FileDescriptor epoll_;
    const FileDescriptor timer_;
    const FileDescriptor stopEvent_;
    std::mutex mutex_;
    std::uint64_t lastId_ = 0;  // guarded by mutex_, as all below
    std::unordered_map<std::uint64_t, Wait*> waits_;
    Timers timers_;
    BootClock::time_point timerSetTo_ = noDeadline;
    bool stopping_ = false;
    std::thread thread_;  // not guarded; last, so that all else is ready for it
};

class [[nodiscard]] Reactor::Wait final : public detail::LeafWait {
public:
    Wait(Reactor& reactor, int fd, BootClock::time_point deadline, detail::Stopping stopping) noexcept
        : LeafWait(stopping), reactor_(reactor), fd_(fd), deadline_(deadline) {}
    Wake await_resume() noexcept {
        end();
        return wake_;
    }

private:
    friend class Reactor;

    bool link() override { return reactor_.link(*this); }
    void stop() noexcept override { reactor_.stop(*this); }

    Reactor& reactor_;
    const int fd_;  // -1: a deadline only
    const BootClock::time_point deadline_;
    bool stopSeen_ = false;  // guarded by the reactor's mutex_, as all below
    Wake wake_ = Wake::ready;
    std::uint64_t id_ = 0;  // 0: not linked
    std::optional<Timers::iterator> place_;
};

inline Reactor::Wait Reactor::readable(int fd, BootClock::time_point deadline) {
    return Wait(*this, fd, deadline, detail::Stopping::heeded);
}
inline Reactor::Wait Reactor::readableShielded(int fd) {
    return Wait(*this, fd, noDeadline, detail::Stopping::shielded);
}
inline Reactor::Wait Reactor::until(BootClock::time_point deadline) {
    return Wait(*this, -1, deadline, detail::Stopping::heeded);
}

}  // namespace cairnfield
