#pragma once
// Keeps one file event stream over a changing set of folders and passes its changes on. Everything happens
// one after the other on a queue of its own over the pool; a stream that cannot be created is logged and the
// program goes on without events. Held by shared_ptr. Releasing it stops the stream; what was asked of it and
// has not begun by then does not happen.

#include "Platform/FileEventStream.h"
#include "Services/FileSystem/FileSystemEventMonitoring.h"
#include "Shared/Concurrency/Strand.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace cairnfield {

class FSEventMonitor final : public FileSystemEventMonitoring,
                             public std::enable_shared_from_this<FSEventMonitor> {
public:
    using OnChange = std::function<void(std::vector<FilePath>)>;

    /// `onChange` is called on the queue, never with an empty list, and must neither block nor throw. The
    /// pool and `streams` outlive the monitor and, where it is released without `finished`, its last work.
    FSEventMonitor(Executor& pool, FileEventStreamCreating& streams, std::chrono::milliseconds latency,
                   OnChange onChange);
    ~FSEventMonitor() override;

    void start(std::vector<FilePath> paths) override;
    void stop() override;
    Task<> finished() override;

private:
    using Weak = std::weak_ptr<FSEventMonitor>;

    // Tasks on the queue. They hold it, and the monitor only while they use it.
    static Task<> starting(std::shared_ptr<Strand> queue, Weak monitor, std::vector<FilePath> paths);
    static Task<> stopping(std::shared_ptr<Strand> queue, Weak monitor);
    static Task<> telling(std::shared_ptr<Strand> queue, Weak monitor, std::uint64_t stream,
                          std::vector<FilePath> paths);

    void replaceStream(std::vector<FilePath> paths);
    void dropStream();

    const std::shared_ptr<Strand> queue_;
    FileEventStreamCreating& streams_;
    const std::chrono::milliseconds latency_;
    const OnChange onChange_;
    // On the queue.
    std::uint64_t streamNumber_ =
        0;  ///< counts up, so that what an older stream still had to tell is dropped
    std::unique_ptr<FileEventStream> stream_;
};

}  // namespace cairnfield
