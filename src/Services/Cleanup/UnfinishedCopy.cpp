#include "Services/Cleanup/UnfinishedCopy.h"

#include "Models/UUID.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace cairnfield {

namespace {

constexpr std::string_view mark = ".cairnfield-unfinished-";
constexpr std::size_t blockSize = 65'536;  // two of them stay in a processor's own cache
/// What the disk is busy with while the next is copied, or the one before compared. A multiple of a block.
constexpr off_t pieceSize = off_t(16) << 20U;

[[noreturn]] void fail(int code, const char* what) {
    throw std::system_error(code, std::generic_category(), what);
}

void check(int result, const char* what) {
    if (result != 0) fail(errno, what);
}

bool isProvisional(std::string_view name) {
    return name.starts_with(mark) && UUID::parse(name.substr(mark.size())).has_value();
}

void writeAll(int file, const char* bytes, std::size_t count, off_t offset) {
    while (count > 0) {
        const ssize_t written = pwrite(file, bytes, count, offset);
        if (written >= 0) {
            bytes += written;
            offset += written;
            count -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            fail(errno, "write");
        }
    }
}

/// Up to `blockSize` bytes from `offset`; fewer only at the end.
std::size_t readBlock(int file, std::vector<char>& block, off_t offset) {
    std::size_t filled = 0;
    while (filled < block.size()) {
        const ssize_t count =
            pread(file, block.data() + filled, block.size() - filled, offset + static_cast<off_t>(filled));
        if (count == 0) break;
        if (count > 0) {
            filled += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            fail(errno, "read");
        }
    }
    return filled;
}

/// A request only: where it cannot be made, the whole file is synced in the end.
void beginWriting(int file, off_t offset, off_t length) {
    (void)sync_file_range(file, offset, length, SYNC_FILE_RANGE_WRITE);
}

/// Tells of a piece that could not be written: the sync of the whole file would not tell of it again.
void waitUntilWritten(int file, off_t offset, off_t length) {
    constexpr unsigned all = SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    if (sync_file_range(file, offset, length, all) == 0) return;
    const bool isUnknownHere = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == ESPIPE;
    if (!isUnknownHere) fail(errno, "sync");
}

constexpr off_t noMore = std::numeric_limits<off_t>::max();

/// Where content begins at or after `offset`: holes lie before it. `noMore` when only a hole follows, or
/// nothing. A file system that knows no holes has content everywhere.
off_t contentFrom(int file, off_t offset) {
    const off_t begin = lseek(file, offset, SEEK_DATA);
    if (begin >= 0) return begin;
    return errno == ENXIO ? noMore : offset;
}

/// Where the content that `offset` lies in ends.
off_t holeFrom(int file, off_t offset) {
    const off_t end = lseek(file, offset, SEEK_HOLE);
    return end >= 0 ? end : noMore;
}

off_t lengthOf(int file) {
    struct stat status{};
    check(fstat(file, &status), "stat");
    return status.st_size;
}

/// One stretch of content, from there to there or to the end of the source. Gives where it ended.
off_t copyStretch(int source, int target, off_t from, off_t end) {
    // In the kernel as far as that goes: it may share the blocks. Whatever ends it, the loop below goes on
    // from there and meets the same failure if it is one.
    off_t to = from;
    for (ssize_t count = 1; count > 0 && from < end;) {
        const auto most = static_cast<std::size_t>(std::min(pieceSize, end - from));
        count = copy_file_range(source, &from, target, &to, most, 0);
        if (count > 0) beginWriting(target, from - count, count);
    }
    std::vector<char> block(blockSize);
    while (from < end) {
        block.resize(static_cast<std::size_t>(std::min<off_t>(off_t(blockSize), end - from)));
        const std::size_t count = readBlock(source, block, from);
        if (count == 0) break;
        writeAll(target, block.data(), count, from);
        from += static_cast<off_t>(count);
        if (from % pieceSize == 0) beginWriting(target, from - pieceSize, pieceSize);
    }
    return from;
}

/// Holes stay holes.
void copyBytes(int source, int target) {
    off_t from = 0;
    for (;;) {
        const off_t begin = contentFrom(source, from);
        if (begin == noMore) break;
        const off_t end = holeFrom(source, begin);
        from = copyStretch(source, target, begin, end);
        if (from < end) break;  // the end of the source
    }
    check(ftruncate(target, std::max(from, lengthOf(source))), "truncate");
}

void copyTime(int source, int target) {
    struct stat status{};
    check(fstat(source, &status), "stat");
    const std::array times{timespec{0, UTIME_OMIT}, status.st_mtim};
    check(futimens(target, times.data()), "times");
}

std::string pathOf(const FileDescriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

}  // namespace

FileDescriptor openFolder(const FilePath& folder) {
    FileDescriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened) throw std::system_error(errno, std::generic_category(), folder.display());
    return opened;
}

FileDescriptor enterFolder(int parent, const std::string& name) {
    if (mkdirat(parent, name.c_str(), 0700) == 0) {
        syncFolder(parent);
    } else if (errno != EEXIST) {
        fail(errno, "mkdir");
    }
    FileDescriptor opened(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!opened) fail(errno, "open");
    return opened;
}

void syncFolder(int folder) {
    // Some file systems have no such thing for folders.
    if (fsync(folder) != 0 && errno != EINVAL) fail(errno, "sync");
}

UnfinishedCopy::UnfinishedCopy(int folder, int source, Form form) : folder_(folder), source_(source) {
    makeFile(form);
    try {
        copyBytes(source_, file_.get());
        copyTime(source_, file_.get());
    } catch (...) {
        if (!provisionalName_.empty()) unlinkat(folder_, provisionalName_.c_str(), 0);
        throw;
    }
}

UnfinishedCopy::~UnfinishedCopy() {
    if (!provisionalName_.empty()) unlinkat(folder_, provisionalName_.c_str(), 0);
}

void UnfinishedCopy::makeFile(Form form) {
    if (form == Form::withoutName) {
        file_.reset(openat(folder_, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
        if (file_) return;
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != ENOENT && errno != EINVAL) fail(errno, "open");
    }
    const std::string name = std::string(mark) + UUID::make().text();
    file_.reset(openat(folder_, name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600));
    if (!file_) fail(errno, "open");
    provisionalName_ = name;
}

/// Holes are read like all else, as zeros: that a file system told of a hole where there is content must not
/// go unnoticed.
bool UnfinishedCopy::equalsSource() const {
    std::vector<char> ours(blockSize);
    std::vector<char> theirs(blockSize);
    for (off_t offset = 0;; offset += static_cast<off_t>(blockSize)) {
        if (offset % pieceSize == 0) waitUntilWritten(file_.get(), offset, pieceSize);
        const std::size_t count = readBlock(file_.get(), ours, offset);
        if (count != readBlock(source_, theirs, offset)) return false;
        if (std::string_view(ours.data(), count) != std::string_view(theirs.data(), count)) return false;
        if (count < blockSize) break;
    }
    check(fsync(file_.get()), "sync");
    return true;
}

/// A file without a name can take a free one only, so it replaces another by way of this one.
void UnfinishedCopy::giveProvisionalName() {
    if (!provisionalName_.empty()) return;
    const std::string name = std::string(mark) + UUID::make().text();
    check(linkat(AT_FDCWD, pathOf(file_).c_str(), folder_, name.c_str(), AT_SYMLINK_FOLLOW), "link");
    provisionalName_ = name;
}

void UnfinishedCopy::replace(int folder, const std::string& name) {
    giveProvisionalName();
    check(renameat(folder_, provisionalName_.c_str(), folder, name.c_str()), "rename");
    provisionalName_.clear();
}

bool UnfinishedCopy::appearAs(int folder, const std::string& name) {
    if (provisionalName_.empty()) {
        if (linkat(AT_FDCWD, pathOf(file_).c_str(), folder, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return true;
        if (errno != EEXIST) fail(errno, "link");
        return false;
    }
    if (renameat2(folder_, provisionalName_.c_str(), folder, name.c_str(), RENAME_NOREPLACE) == 0) {
        provisionalName_.clear();
        return true;
    }
    if (errno == EEXIST) return false;
    if (errno != EINVAL && errno != ENOSYS) fail(errno, "rename");
    // The file system cannot rename so; two names for a moment do the same.
    if (linkat(folder_, provisionalName_.c_str(), folder, name.c_str(), 0) == 0) return true;
    if (errno != EEXIST) fail(errno, "link");
    return false;
}

void removeUnfinishedCopies(int folder) {
    // The listing takes a descriptor of its own, with a position of its own.
    FileDescriptor copy(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!copy) fail(errno, "open");
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fdopendir(copy.get()), closedir);
    if (!listing) fail(errno, "list");
    (void)copy.release();
    while (const dirent* entry = readdir(listing.get())) {
        if (isProvisional(entry->d_name) && unlinkat(folder, entry->d_name, 0) != 0 && errno != ENOENT)
            fail(errno, "unlink");
    }
}

}  // namespace cairnfield
