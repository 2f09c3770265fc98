#pragma once
// The work of one stream: a single task on the blocking executor that sleeps in the reactor until something
// waits in one of its queues, takes it in, keeps the watches up and reports. All state but the listener's is
// touched by that task alone.

#include "Platform/FileEventStream.h"
#include "Platform/Linux/RootGuards.h"
#include "Platform/Linux/WatchWalk.h"
#include "Platform/Linux/WatchedForest.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/Task.h"

#include <mutex>
#include <set>

namespace cairnfield {

/// The one who is told, until it no longer wants to be. From any thread.
class ChangeListener {
public:
    explicit ChangeListener(FileEventStreamCreating::OnChange onChange) : onChange_(std::move(onChange)) {}

    void tell(std::vector<FilePath> paths);
    /// Once this has returned, nothing is told any more.
    void close();

private:
    std::mutex mutex_;
    FileEventStreamCreating::OnChange onChange_;  // guarded by mutex_; empty once closed
};

class EventWatch {
public:
    /// Throws std::system_error.
    EventWatch(Reactor& reactor, const std::vector<FilePath>& roots, std::chrono::milliseconds latency,
               FileEventStreamCreating::OnChange onChange, std::size_t watchLimit);

    [[nodiscard]] ChangeListener& listener() noexcept { return listener_; }

    /// Until it is cancelled.
    Task<> run();

private:
    using Instant = BootClock::time_point;

    void takeEvents();
    void take(const InotifyEvent& event);
    void overflow();
    void lookAfterRoots();
    [[nodiscard]] bool look(std::size_t root, bool isAsked);
    void work();
    void deliver(Instant now);
    [[nodiscard]] Instant nextDue() const;

    Reactor& reactor_;
    const std::chrono::milliseconds latency_;
    ChangeListener listener_;
    WatchedForest forest_;
    WatchWalk walk_;
    RootGuards guards_;
    FileDescriptor mounts_;  ///< tells of a changed mount table
    FileDescriptor queues_;  ///< readable when one of the three has something
    bool isStarted_ = false;
    bool areRootsInDoubt_ = true;
    std::set<std::size_t> askedRoots_;  ///< to be looked at as if for the first time
    // After an overflow.
    bool isRelistWanted_ = false;
    bool isRelisting_ = false;
    bool isOverflowLogged_ = false;
    Instant relistBegan_{};
    Instant relistNotBefore_{};
};

}  // namespace cairnfield
