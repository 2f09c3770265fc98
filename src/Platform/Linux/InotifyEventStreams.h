#pragma once
// File events over inotify: one watch a directory, each named by its parent's watch and its name. A stream
// takes two inotify instances, and wakes only when something changed below its roots, a root's ancestor moved
// or a file system was mounted. Its work runs on the blocking executor, in short pieces, so that setting up
// many watches holds up neither events nor the others there.
//
// Not promised: what changes inside a file that stood before, between `create` and the moment its directory's
// watch is set. A directory that cannot be listed, or whose path is longer than the system takes, is not
// watched. With the system's watches used up the deepest directories go without; this is logged once, the
// root is reported then and with every later batch, and watching them is tried again as watches become free.
// A change in such a directory alone is thus reported late: with the next change anywhere else.

#include "Platform/FileEventStream.h"
#include "Shared/Concurrency/Executor.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/TaskScope.h"

#include <cstddef>
#include <limits>

namespace cairnfield {

struct InotifyLimits {
    /// Of one stream, beside what the system allows.
    std::size_t watches = std::numeric_limits<std::size_t>::max();
};

class InotifyEventStreams final : public FileEventStreamCreating {
public:
    /// Both outlive this.
    InotifyEventStreams(Reactor& reactor, Executor& blocking, InotifyLimits limits = {});
    /// Waits for what is left of destroyed streams. Every stream is to be destroyed before.
    ~InotifyEventStreams() override;

    [[nodiscard]] std::unique_ptr<FileEventStream> create(std::vector<FilePath> roots,
                                                          std::chrono::milliseconds latency,
                                                          OnChange onChange) override;

private:
    Reactor& reactor_;
    Executor& blocking_;
    const InotifyLimits limits_;
    TaskScope tasks_;
};

}  // namespace cairnfield
