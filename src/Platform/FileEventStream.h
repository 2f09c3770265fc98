#pragma once
// Being told that something changed below some directories. What changed is not said: whoever is told looks
// for itself.

#include "Shared/Paths/FilePath.h"

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace cairnfield {

/// A running stream. Destroying it stops it, at once and from any thread but that of `onChange`, during
/// set-up too; `onChange` is not called once the destructor has returned.
class FileEventStream {
public:
    virtual ~FileEventStream() = default;
};

class FileEventStreamCreating {
public:
    /// Called with at least one path, by one thread at a time, which it must not block. Must not throw, and
    /// must not destroy its stream.
    using OnChange = std::function<void(std::vector<FilePath>)>;

    virtual ~FileEventStreamCreating() = default;

    /// A stream that reports the directories below the roots in which something changed from now on, and a
    /// root itself when it moves, goes or comes back. A path begins with the root's path as given. The first
    /// change of a quiet period is reported at once and later ones together, at most `latency` after each.
    ///
    /// More may be reported than changed: a root stands for anything below it. Symbolic links below a root
    /// are not followed and other file systems below it not entered; a root may be a link, and may be
    /// missing. Returns before the watching is set up. Throws std::system_error when the system gives no
    /// stream at all.
    [[nodiscard]] virtual std::unique_ptr<FileEventStream> create(std::vector<FilePath> roots,
                                                                  std::chrono::milliseconds latency,
                                                                  OnChange onChange) = 0;
};

}  // namespace cairnfield
