#pragma once
// One walk of a directory tree that adds up what it takes on disk. Blocking: called on a thread that may
// wait, never on the main thread or inside an actor.

#include "Models/DirectoryScan.h"

#include <cstdint>
#include <stop_token>

namespace cairnfield {

class TreeMeasuring {
public:
    virtual ~TreeMeasuring() = default;

    /// Walks `root` (standardized first), never through symbolic links and never into another file system.
    /// Allocated blocks count, under every hard-linked name; links count neither as size nor as file; the
    /// root's own entry does not count, and a root that is a link is followed. What cannot be entered is
    /// listed in the result and the walk goes on. A root that is no directory is weighed alone. Throws
    /// CairnfieldError: PathMissing when nothing exists at the root, PermissionDenied when it cannot be
    /// listed; Cancelled (Shared/Concurrency) soon after `stop` is requested; std::system_error when the
    /// process runs out of a resource, which is never taken for an unreadable directory.
    [[nodiscard]] virtual DirectoryScanResult measure(const FilePath& root, std::stop_token stop) = 0;

    /// The allocated bytes of one item itself, links not followed. Throws std::system_error.
    [[nodiscard]] virtual std::int64_t allocatedSize(const FilePath& item) = 0;
};

}  // namespace cairnfield
