#pragma once

#include "Platform/TreeMeasuring.h"
#include "Shared/Concurrency/Cancelled.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <stop_token>
#include <utility>
#include <vector>

namespace cairnfield {

/// Walks that begin when they are asked for and end when the test says so, with what the test says. A walk
/// that is stopped throws Cancelled. From any thread.
class FakeTreeMeasurer final : public TreeMeasuring {
public:
    explicit FakeTreeMeasurer(const WallClock& clock) : clock_(clock) {}

    DirectoryScanResult measure(const FilePath& root, std::stop_token stop) override {
        std::unique_lock lock(mutex_);
        started_.push_back(root);
        ++running_;
        mostAtOnce_ = std::max(mostAtOnce_, running_);
        changed_.notify_all();
        const bool ended = changed_.wait(lock, stop, [&] { return !endings_[root].empty(); });
        --running_;
        changed_.notify_all();
        if (!ended) throw Cancelled();
        const Ending ending = endings_[root].front();
        endings_[root].erase(endings_[root].begin());
        if (ending.failure) std::rethrow_exception(ending.failure);
        DirectoryScanResult result;
        result.url = root;
        result.totalBytes = ending.bytes;
        result.fileCount = 1;
        result.scannedAt = clock_.now();
        return result;
    }

    std::int64_t allocatedSize(const FilePath& item) override {
        return static_cast<std::int64_t>(item.bytes().size());
    }

    /// Ends a walk of the root with so many bytes: the one under way, or else the next.
    void finish(const FilePath& root, std::int64_t bytes) { end(root, {bytes, nullptr}); }
    template <class Failure>
    void fail(const FilePath& root, Failure failure) {
        end(root, {0, std::make_exception_ptr(std::move(failure))});
    }

    /// Blocks until so many walks have begun since the start.
    void waitForStarts(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return started_.size() >= count; });
    }

    /// The roots in the order in which their walks began.
    [[nodiscard]] std::vector<FilePath> started() const {
        const std::lock_guard lock(mutex_);
        return started_;
    }
    [[nodiscard]] std::size_t mostAtOnce() const {
        const std::lock_guard lock(mutex_);
        return mostAtOnce_;
    }
    [[nodiscard]] std::size_t running() const {
        const std::lock_guard lock(mutex_);
        return running_;
    }

private:
    struct Ending {
        std::int64_t bytes = 0;
        std::exception_ptr failure;
    };

    void end(const FilePath& root, Ending ending) {
        const std::lock_guard lock(mutex_);
        endings_[root].push_back(std::move(ending));
        changed_.notify_all();
    }

    const WallClock& clock_;
    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    // Guarded by mutex_.
    std::map<FilePath, std::vector<Ending>> endings_;
    std::vector<FilePath> started_;
    std::size_t running_ = 0;
    std::size_t mostAtOnce_ = 0;
};

}  // namespace cairnfield
