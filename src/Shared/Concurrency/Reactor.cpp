#include "Shared/Concurrency/Reactor.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <poll.h>
#include <pthread.h>
#include <system_error>

namespace cairnfield {

namespace {

// What epoll hands back: these two, or the id of a wait, which are counted up from there.
constexpr std::uint64_t stopId = 0;
constexpr std::uint64_t timerId = 1;

FileDescriptor opened(int fd, const char* what) {
    if (fd < 0) throw std::system_error(errno, std::generic_category(), what);
    return FileDescriptor(fd);
}

bool readableNow(int fd) noexcept {
    pollfd question{fd, POLLIN, 0};
    return ::poll(&question, 1, 0) > 0;
}

}  // namespace

Reactor::Reactor()
    : epoll_(opened(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")),
      timer_(opened(::timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create")),
      stopEvent_(opened(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")),
      lastId_(timerId) {
    watch(stopEvent_.get(), stopId, EPOLLIN);
    watch(timer_.get(), timerId, EPOLLIN | EPOLLET);
    thread_ = std::thread([this] { serve(); });
    ::pthread_setname_np(thread_.native_handle(), "reactor");
}

Reactor::~Reactor() {
    {
        const std::lock_guard lock(mutex_);
        assert(waits_.empty() && "a task outlives the reactor it waits for");
        stopping_ = true;
    }
    ::eventfd_write(stopEvent_.get(), 1);
    thread_.join();
}

void Reactor::watch(int fd, std::uint64_t id, std::uint32_t events) const {
    epoll_event event{};
    event.events = events;
    event.data.u64 = id;
    if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, fd, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
}

bool Reactor::link(Wait& wait) {
    const std::lock_guard lock(mutex_);
    if (wait.stopSeen_) {
        wait.wake_ = Wake::cancelled;
        return false;
    }
    const std::uint64_t id = ++lastId_;
    if (wait.fd_ >= 0) {
        try {
            watch(wait.fd_, id, EPOLLIN | EPOLLONESHOT);
        } catch (const std::system_error& error) {
            if (error.code().value() != EPERM) throw;
            wait.wake_ = Wake::ready;  // a plain file, which never makes anyone wait
            return false;
        }
    }
    wait.id_ = id;
    waits_.emplace(id, &wait);
    if (wait.deadline_ != noDeadline) {
        wait.place_ = timers_.emplace(wait.deadline_, &wait);
        setTimer();
    }
    return true;
}

void Reactor::unlink(Wait& wait) noexcept {
    waits_.erase(wait.id_);
    wait.id_ = 0;
    if (wait.place_) timers_.erase(*std::exchange(wait.place_, std::nullopt));
    if (wait.fd_ >= 0) ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, wait.fd_, nullptr);
}

void Reactor::stop(Wait& wait) noexcept {
    detail::PromiseBase* waiter = nullptr;
    {
        const std::lock_guard lock(mutex_);
        wait.stopSeen_ = true;
        if (wait.id_ == 0) return;  // not linked yet, or already woken
        unlink(wait);
        setTimer();
        wait.wake_ = Wake::cancelled;
        waiter = wait.waiter();
    }
    waiter->schedule();
}

/// Sets the one timer to the earliest deadline, or off, so that no deadline that was given up wakes anyone.
void Reactor::setTimer() noexcept {
    const BootClock::time_point earliest = timers_.empty() ? noDeadline : timers_.begin()->first;
    if (earliest == timerSetTo_) return;
    timerSetTo_ = earliest;
    itimerspec when{};
    if (earliest != noDeadline) {
        // Zero would switch the timer off; a deadline before the machine's start is as good as its first
        // nanosecond.
        const auto sinceBoot = std::max(earliest.time_since_epoch(), std::chrono::nanoseconds(1));
        const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceBoot);
        when.it_value.tv_sec = seconds.count();
        when.it_value.tv_nsec = (sinceBoot - seconds).count();
    }
    ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

void Reactor::serve() {
    std::vector<detail::PromiseBase*> due;
    std::array<epoll_event, 64> events{};
    for (;;) {
        const int count = ::epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()), -1);
        {
            const std::lock_guard lock(mutex_);
            if (stopping_) return;
            for (int i = 0; i < count; ++i) takeReady(events[static_cast<std::size_t>(i)].data.u64, due);
            takeOverdue(due);
            setTimer();
        }
        for (detail::PromiseBase* waiter : due) waiter->schedule();
        due.clear();
    }
}

void Reactor::takeReady(std::uint64_t id, std::vector<detail::PromiseBase*>& due) {
    const auto found = waits_.find(id);
    if (found == waits_.end()) return;  // the timer's, or ended meanwhile
    take(*found->second, Wake::ready, due);
}

void Reactor::takeOverdue(std::vector<detail::PromiseBase*>& due) {
    if (timers_.empty()) return;
    const BootClock::time_point now = BootClock::now();
    while (!timers_.empty() && timers_.begin()->first <= now) {
        Wait& wait = *timers_.begin()->second;
        take(wait, wait.fd_ >= 0 && readableNow(wait.fd_) ? Wake::ready : Wake::timeout, due);
    }
}

void Reactor::take(Wait& wait, Wake wake, std::vector<detail::PromiseBase*>& due) {
    unlink(wait);
    wait.wake_ = wake;
    due.push_back(wait.waiter());
}

Task<> Reactor::sleep(BootClock::duration duration) {
    const Wake wake = co_await until(BootClock::add(BootClock::now(), duration));
    if (wake == Wake::cancelled) throw Cancelled();
}

}  // namespace cairnfield
