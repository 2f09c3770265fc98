#include "Platform/Linux/EventWatch.h"

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Logging/Log.h"

#include <sys/epoll.h>
#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <system_error>

namespace cairnfield {

namespace {

using namespace std::chrono_literals;

// While a batch waits, events are taken in at most so often: the queue holds more than can come meanwhile.
constexpr auto betweenReadings = 50ms;
// Both halves of a renaming are in the queue by then.
constexpr auto renamingTakes = 5ms;
// So many fillings of the buffer in a row, then other work has its turn.
constexpr int fillingsInARow = 16;
// A path that changes faster than it can be looked at is looked at again in the next round.
constexpr int looksInARow = 3;

void watchWith(int epoll, int descriptor, std::uint32_t events) {
    epoll_event event{};
    event.events = events;
    if (epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
}

}  // namespace

void ChangeListener::tell(std::vector<FilePath> paths) {
    const std::lock_guard lock(mutex_);
    if (onChange_) onChange_(std::move(paths));
}

void ChangeListener::close() {
    const std::lock_guard lock(mutex_);
    onChange_ = nullptr;
}

EventWatch::EventWatch(Reactor& reactor, const std::vector<FilePath>& roots,
                       std::chrono::milliseconds latency, FileEventStreamCreating::OnChange onChange,
                       std::size_t watchLimit)
    : reactor_(reactor),
      latency_(latency),
      listener_(std::move(onChange)),
      forest_(roots, latency),
      walk_(forest_, watchLimit),
      mounts_(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      queues_(epoll_create1(EPOLL_CLOEXEC)) {
    if (!queues_) throw std::system_error(errno, std::generic_category(), "epoll_create1");
    watchWith(queues_.get(), forest_.queue.descriptor(), EPOLLIN);
    watchWith(queues_.get(), guards_.descriptor(), EPOLLIN);
    if (mounts_) watchWith(queues_.get(), mounts_.get(), EPOLLPRI);
}

Task<> EventWatch::run() {
    for (;;) {
        co_await checkCancelled();
        work();
        if (walk_.isBusy() || areRootsInDoubt_) {
            co_await yieldNow();
            continue;
        }
        const Instant now = BootClock::now();
        const Instant due = nextDue();
        Wake wake{};
        if (walk_.hasDoubts()) {
            wake = co_await reactor_.until(now + renamingTakes);
            takeEvents();
            walk_.settle();
        } else if (due != noDeadline) {
            wake = co_await reactor_.until(std::min(due, now + betweenReadings));
            if (wake != Wake::cancelled && BootClock::now() < due)
                wake = co_await reactor_.readable(queues_.get(), due);
        } else {
            wake = co_await reactor_.readable(queues_.get());
        }
        if (wake == Wake::cancelled) throw Cancelled();
        // Also when no queue has anything: something was mounted or unmounted then.
        if (wake == Wake::ready) areRootsInDoubt_ = true;
    }
}

void EventWatch::work() {
    takeEvents();
    if (areRootsInDoubt_ || !forest_.lostRoots.empty()) lookAfterRoots();
    walk_.goOn();
    const Instant now = BootClock::now();
    walk_.retry(now);
    if (isRelisting_ && !walk_.isBusy()) {
        isRelisting_ = false;
        relistNotBefore_ = BootClock::add(now, latency_ + (now - relistBegan_));
    }
    if (isRelistWanted_ && !walk_.isBusy() && now >= relistNotBefore_) {
        isRelistWanted_ = false;
        isRelisting_ = true;
        relistBegan_ = now;
        walk_.relist();
    }
    deliver(now);
}

EventWatch::Instant EventWatch::nextDue() const {
    const Instant due = std::min(forest_.batch.due().value_or(noDeadline), walk_.retryDue());
    return isRelistWanted_ ? std::min(due, relistNotBefore_) : due;
}

void EventWatch::takeEvents() {
    bool isAnything = false;
    for (int filling = 0; filling < fillingsInARow && forest_.queue.fill(); ++filling) {
        isAnything = true;
        while (const std::optional<InotifyEvent> event = forest_.queue.next()) take(*event);
    }
    const RootGuards::Concerned concerned = guards_.takeEvents();
    for (const std::size_t root : concerned.moved) forest_.reportRoot(root);
    askedRoots_.insert(concerned.inDoubt.begin(), concerned.inDoubt.end());
    if (isAnything || !askedRoots_.empty()) areRootsInDoubt_ = true;
}

void EventWatch::take(const InotifyEvent& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        overflow();
        return;
    }
    if ((event.mask & IN_IGNORED) != 0) walk_.freed();
    const WatchId id = forest_.table.byWatch(event.watch);
    if (id == noWatchId) return;  // given up meanwhile
    forest_.report(id);
    if ((event.mask & IN_IGNORED) != 0) {
        walk_.lose(id);
        return;
    }
    if ((event.mask & IN_ISDIR) == 0 || event.name.empty()) return;
    const WatchId child = forest_.table.child(id, event.name);
    const bool isThere = child != noWatchId;
    if ((event.mask & IN_CREATE) != 0)
        walk_.expect(id, event.name);
    else if ((event.mask & IN_MOVED_TO) != 0)
        walk_.meet(id, event.name);
    else if ((event.mask & IN_ATTRIB) != 0 && !isThere)
        walk_.expect(id, event.name);  // it may be open to us now
    else if ((event.mask & IN_DELETE) != 0 && isThere)
        forest_.drop(child);
    else if ((event.mask & IN_MOVED_FROM) != 0 && isThere)
        walk_.doubt(child);
}

void EventWatch::overflow() {
    if (!isOverflowLogged_)
        Log::events().warn("The queue of file events overflowed; looking at everything again");
    isOverflowLogged_ = true;
    isRelistWanted_ = true;
    areRootsInDoubt_ = true;
    for (std::size_t root = 0; root < forest_.roots.size(); ++root) forest_.reportRoot(root);
}

void EventWatch::lookAfterRoots() {
    areRootsInDoubt_ = false;
    std::vector<FilePath> paths;
    for (const WatchedRoot& root : forest_.roots) paths.push_back(root.path);
    for (int round = 0; round < looksInARow; ++round) {
        bool isChanged = !isStarted_ || !forest_.lostRoots.empty();
        for (const std::size_t root : std::exchange(forest_.lostRoots, {})) {
            forest_.reportRoot(root);
            forest_.roots[root].place.reset();
        }
        for (std::size_t root = 0; root < forest_.roots.size(); ++root) {
            if (look(root, !isStarted_ || askedRoots_.contains(root))) isChanged = true;
        }
        askedRoots_.clear();
        isStarted_ = true;
        if (!isChanged) return;
        // What happens from here on is told; what happened before is seen in the next round.
        guards_.guard(paths);
    }
    areRootsInDoubt_ = true;
}

/// True when the root stands elsewhere than before, or anew, or no longer.
bool EventWatch::look(std::size_t root, bool isAsked) {
    WatchedRoot& looked = forest_.roots[root];
    const std::optional<RootPlace> place = placeOf(looked.path);
    const bool isElsewhere = place != looked.place;
    const bool wasWatched = looked.top != noWatchId;
    if (isElsewhere && wasWatched) {
        forest_.drop(looked.top);
        return true;
    }
    if (wasWatched || (!isElsewhere && !isAsked)) return isAsked;
    const bool isFirst = !isStarted_;
    walk_.attach(root);
    const bool isWatched = looked.top != noWatchId;
    if (isWatched && !isFirst) forest_.reportRoot(root);
    return isElsewhere || isAsked;
}

void EventWatch::deliver(Instant now) {
    const std::optional<Instant> due = forest_.batch.due();
    if (!due || *due > now) return;
    listener_.tell(forest_.batch.take(now));
}

}  // namespace cairnfield
