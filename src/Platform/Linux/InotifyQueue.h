#pragma once
// One inotify instance and what waits in its queue. Nothing here blocks but the file systems asked for a
// path. Used by one thread at a time.

#include "Shared/Concurrency/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace cairnfield {

struct InotifyEvent {
    int watch = 0;           ///< -1 when the queue overflowed
    std::uint32_t mask = 0;  ///< the IN_ bits
    std::string_view
        name;  ///< of the entry concerned, empty for the watched item itself; lives until the next fill
};

class InotifyQueue {
public:
    struct Added {
        int watch = 0;  ///< the number that the item has already when it is watched already; 0 on failure
        int error = 0;
    };

    /// Throws std::system_error.
    InotifyQueue();

    /// Readable while something waits.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_.get(); }

    /// Numbers count up: one that was given up is not used again.
    [[nodiscard]] Added add(const char* path, std::uint32_t mask) const noexcept;
    /// A number that is no longer known does no harm.
    void remove(int watch) const noexcept;

    /// Takes the next of what waits from the system. False when nothing does.
    [[nodiscard]] bool fill();
    /// The next event of those.
    [[nodiscard]] std::optional<InotifyEvent> next();

private:
    static constexpr std::size_t bufferSize = std::size_t{64} * 1024;

    const FileDescriptor descriptor_;
    const std::unique_ptr<std::byte[]> buffer_;
    std::size_t filled_ = 0;
    std::size_t consumed_ = 0;
};

}  // namespace cairnfield
