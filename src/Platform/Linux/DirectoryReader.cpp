#include "Platform/Linux/DirectoryReader.h"

#include <sys/syscall.h>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <unistd.h>

namespace cairnfield {

namespace {

// As the kernel lays an entry out: inode and next position of eight bytes each, the length, the type, the
// name with its NUL.
constexpr std::size_t nextOffset = 8;
constexpr std::size_t lengthOffset = 16;
constexpr std::size_t typeOffset = 18;
constexpr std::size_t nameOffset = 19;

EntryKind kindOf(std::byte type) {
    switch (std::to_integer<unsigned char>(type)) {
        case DT_DIR:
            return EntryKind::directory;
        case DT_LNK:
            return EntryKind::link;
        case DT_UNKNOWN:
            return EntryKind::unknown;
        default:
            return EntryKind::other;
    }
}

bool isSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

}  // namespace

DirectoryReader::DirectoryReader() : buffer_(std::make_unique<std::byte[]>(wholeBuffer)) {}

DirectoryReader::Filled DirectoryReader::fill(int directory, std::size_t limit) {
    filled_ = consumed_ = 0;
    error_ = 0;
    // A call may give less than fits and the end shows only in a call that gives nothing. So a small
    // directory is read to its end at once, and its descriptor need not wait for its turn again.
    do {
        const long got = syscall(SYS_getdents64, directory, buffer_.get() + filled_, limit - filled_);
        if (got < 0) {
            error_ = errno;
            return Filled::failed;
        }
        if (got == 0) return Filled::end;
        filled_ += static_cast<std::size_t>(got);
    } while (limit - filled_ >= smallBite);
    return Filled::more;
}

std::optional<DirectoryEntry> DirectoryReader::next() {
    while (consumed_ < filled_) {
        const std::byte* entry = buffer_.get() + consumed_;
        std::uint16_t length = 0;
        std::int64_t position = 0;
        std::memcpy(&length, entry + lengthOffset, sizeof length);
        std::memcpy(&position, entry + nextOffset, sizeof position);
        consumed_ += length;
        const char* name = reinterpret_cast<const char*>(entry + nameOffset);
        if (isSelfOrParent(name)) continue;
        return DirectoryEntry{.name = name, .kind = kindOf(entry[typeOffset]), .next = position};
    }
    return std::nullopt;
}

}  // namespace cairnfield
