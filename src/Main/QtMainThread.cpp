#include "Main/QtMainThread.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

/// So many pieces of work in a row, then the window's own events get their turn.
constexpr int workPerTurn = 64;

int openEvent() {
    const int fd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (fd < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    return fd;
}

}  // namespace

QtMainThread::QtMainThread() : event_(openEvent()), notifier_(event_.get(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { runSome(); });
}

QtMainThread::~QtMainThread() {
    notifier_.setEnabled(false);
    while (Work* const work = take()) runNow(work);
}

void QtMainThread::post(Work* work) {
    // The lock is held over the write: once it is released, the work may run and bring this object to its
    // end.
    const std::lock_guard lock(mutex_);
    const bool wasEmpty = queue_.empty();
    queue_.push(work);
    if (!wasEmpty) return;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(event_.get(), &one, sizeof one);
}

bool QtMainThread::isCurrent() const noexcept {
    return std::this_thread::get_id() == owner_;
}

void QtMainThread::runSome() {
    for (int turn = 0; turn < workPerTurn; ++turn) {
        Work* const work = take();
        if (!work) return;
        runNow(work);
    }
}

Work* QtMainThread::take() {
    const std::lock_guard lock(mutex_);
    Work* const work = queue_.pop();
    if (queue_.empty()) {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t got = ::read(event_.get(), &count, sizeof count);
    }
    return work;
}

}  // namespace cairnfield
