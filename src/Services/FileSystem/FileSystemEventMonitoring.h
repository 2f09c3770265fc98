#pragma once
// Watching a set of folders, as the model asks for it.

#include "Shared/Concurrency/Task.h"
#include "Shared/Paths/FilePath.h"

#include <vector>

namespace cairnfield {

/// From any thread. `start` and `stop` return at once and take effect in the order in which they were called.
class FileSystemEventMonitoring {
public:
    virtual ~FileSystemEventMonitoring() = default;

    /// Replaces what is being watched by these folders; with none of them nothing is watched.
    virtual void start(std::vector<FilePath> paths) = 0;
    virtual void stop() = 0;

    /// After `stop`: returns when nothing of the monitor runs any more and no change will be told.
    virtual Task<> finished() = 0;
};

}  // namespace cairnfield
