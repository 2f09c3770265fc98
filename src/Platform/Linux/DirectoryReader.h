#pragma once
// The entries of an open directory, many to a system call. Each walking thread has one reader and with it one
// buffer, which is all that a directory takes in memory, however many entries it has. Not shared between
// threads.

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace cairnfield {

enum class EntryKind : std::uint8_t { directory, link, other, unknown };

struct DirectoryEntry {
    const char* name = nullptr;  ///< lives until the next fill
    EntryKind kind = EntryKind::unknown;
    off_t next = 0;  ///< where reading goes on behind this entry, for lseek
};

class DirectoryReader {
public:
    static constexpr std::size_t wholeBuffer = std::size_t{32} * 1024;
    static constexpr std::size_t smallBite = 1024;  ///< no file system's longest entry is longer

    enum class Filled { more, end, failed };

    DirectoryReader();

    /// Replaces the entries by the next ones of the directory, as many as fit into so many bytes of the
    /// buffer. `end`: there are none behind these. `failed`: reading broke off behind these, for the reason
    /// in error(). The next call may be for another directory.
    [[nodiscard]] Filled fill(int directory, std::size_t limit);

    /// The next of the entries, "." and ".." left out.
    [[nodiscard]] std::optional<DirectoryEntry> next();

    [[nodiscard]] int error() const noexcept { return error_; }

private:
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t filled_ = 0;
    std::size_t consumed_ = 0;
    int error_ = 0;
};

}  // namespace cairnfield
