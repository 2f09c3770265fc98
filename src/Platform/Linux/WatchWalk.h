#pragma once
// Sets watches and keeps the table true to the tree: visits, in short pieces and the shallow directories
// first, those that were found, that appeared, or that may have moved away.
//
// A directory is recognised by its watch number, since the system gives a directory that is watched already
// the number that it has: one that was renamed is met again at its new place and keeps everything below it.
// A directory is listed after its watch is set, so that what was in it before is found and what comes later
// is told.
//
// When the system gives no more watches, those left over are remembered and tried again once some are free.
// Used by one thread at a time.

#include "Platform/Linux/DirectoryReader.h"
#include "Platform/Linux/WatchedForest.h"
#include "Shared/Concurrency/BootClock.h"

#include <sys/stat.h>

#include <deque>
#include <time.h>
#include <utility>
#include <vector>

namespace cairnfield {

class WatchWalk {
public:
    /// `limit`: of watches, beside the system's own.
    WatchWalk(WatchedForest& forest, std::size_t limit);

    /// Takes up the watching of a root where it stands now. Without success its top stays empty.
    void attach(std::size_t root);
    /// A directory appeared under this name.
    void expect(WatchId parent, std::string_view name);
    /// The same at once, for one that was renamed: what happens in it from now on is reported under its new
    /// path.
    void meet(WatchId parent, std::string_view name);
    /// The system no longer watches the directory. Another may stand in its place by now.
    void lose(WatchId id);
    /// The directory may have moved away. Where to, if it is still in the tree, is known once the events that
    /// wait have been taken in: `settle` then.
    void doubt(WatchId id);
    [[nodiscard]] bool hasDoubts() const noexcept { return !adrift_.empty(); }
    void settle();
    /// Events were lost: looks at every directory again.
    void relist();

    [[nodiscard]] bool isBusy() const noexcept { return !waiting_.empty(); }
    /// Does a piece of what waits, some milliseconds long.
    void goOn();

    /// Some directories have no watch for lack of them.
    [[nodiscard]] bool isShort() const noexcept { return isShort_; }
    /// The system has taken a watch back.
    void freed() noexcept { ++freed_; }
    /// To be called now and then: tries those again for which there may be watches.
    void retry(BootClock::time_point now);
    /// When to call it again though nothing happens; the system may tell of a free watch before it is free.
    [[nodiscard]] BootClock::time_point retryDue() const noexcept {
        return isShort_ ? secondTry_ : noDeadline;
    }

private:
    /// The directory whose subdirectories were last visited: many are, one after the other.
    struct OpenParent {
        WatchId id = noWatchId;
        int watch = 0;
        FileDescriptor descriptor;
    };

    void visit(WatchId id);
    [[nodiscard]] OpenedDirectory open(WatchId id, const WatchedRoot& root);
    [[nodiscard]] int openParent(WatchId id);
    void arrive(WatchId id, WatchTask task, int descriptor, const struct stat& standing, int watch);
    void meetAgain(WatchId id, WatchId known, WatchTask task, const struct stat& standing);
    void attachFile(WatchId id);
    void shareTop(WatchId id, WatchId known);
    void fail(WatchId id, WatchTask task, int error);
    void runShort(WatchId id, WatchTask task);
    void list(WatchId id, WatchTask task, int descriptor);
    void come(WatchId parent, const char* name, WatchTask task);
    void wait(WatchId id, WatchTask task);
    [[nodiscard]] bool changedSinceStart(const struct stat& standing) const noexcept;

    WatchedForest& forest_;
    const std::size_t limit_;
    timespec start_{};
    DirectoryReader reader_;
    OpenParent parent_;
    std::deque<WatchId> waiting_;                  ///< entries with a task; others among them are passed over
    std::vector<std::pair<WatchId, int>> adrift_;  ///< with the watch that they had
    std::uint32_t listing_ = 0;
    // For lack of watches.
    bool isShort_ = false;
    bool isLogged_ = false;
    std::deque<WatchId> unwatched_;
    std::size_t freed_ = 0;
    BootClock::time_point lastTry_{};
    BootClock::time_point secondTry_ = noDeadline;
};

}  // namespace cairnfield
