#pragma once
// A stream over real directories, what it told, and what the system itself says is watched.

#include "Platform/Linux/InotifyEventStreams.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/TemporaryDirectory.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

/// Asks again and again, at most half a minute long.
[[nodiscard]] bool eventually(const std::function<bool()>& condition);

/// The body's answer, from a child process that may limit itself as it likes; "threw: ..." when it threw.
[[nodiscard]] std::string inChild(const std::function<std::string()>& body);

/// What a stream told, from any thread.
class ToldChanges {
public:
    using Instant = std::chrono::steady_clock::time_point;

    void add(std::vector<FilePath> paths);
    [[nodiscard]] bool waitForPath(const FilePath& path);
    /// Waits for the batch of this position and gives when it came.
    [[nodiscard]] Instant timeOf(std::size_t batch);
    [[nodiscard]] std::set<FilePath> paths() const;
    [[nodiscard]] std::vector<std::vector<FilePath>> batches() const;
    void forget();

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::vector<FilePath>> batches_;  // guarded by mutex_, as all below
    std::vector<Instant> times_;
    std::set<FilePath> paths_;
};

using InodeNumbers = std::set<unsigned long>;

/// The directories that this process watches for changes inside.
[[nodiscard]] InodeNumbers watchedDirectories();
/// Those of the trees, roots included, without following links.
[[nodiscard]] InodeNumbers directoriesOf(const std::vector<FilePath>& roots);

/// Holds up the only thread of a pool.
class HeldThread {
public:
    explicit HeldThread(ThreadPool& pool);
    ~HeldThread();
    HeldThread(const HeldThread&) = delete;
    HeldThread& operator=(const HeldThread&) = delete;

private:
    struct Gate;
    const std::shared_ptr<Gate> gate_;
};

struct EventStage {
    static constexpr std::chrono::milliseconds latency{50};

    explicit EventStage(InotifyLimits limits = {}) : streams(reactor, blocking, limits) {}
    ~EventStage() { stream.reset(); }

    void watch(std::vector<FilePath> roots, std::chrono::milliseconds delay = latency);
    /// Until what is watched is the trees as they stand, no more and no less.
    [[nodiscard]] bool watchesExactly(const std::vector<FilePath>& roots);
    /// Whether a change in the directory is told.
    [[nodiscard]] bool notices(const FilePath& directory, const FilePath& toldAs);
    [[nodiscard]] bool notices(const FilePath& directory) { return notices(directory, directory); }

    Reactor reactor;
    ThreadPool blocking{1};
    InotifyEventStreams streams;
    ToldChanges told;
    std::unique_ptr<FileEventStream> stream;
};

}  // namespace cairnfield
