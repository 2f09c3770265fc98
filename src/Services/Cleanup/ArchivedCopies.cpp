#include "Services/Cleanup/ArchivedCopies.h"

#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <system_error>

namespace cairnfield {

namespace {

/// Absent when nothing is there; links are followed, as the vault follows them.
std::optional<struct stat> statusOf(const FilePath& file) {
    struct stat status{};
    if (stat(file.c_str(), &status) == 0) return status;
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw std::system_error(errno, std::generic_category(), file.display());
}

bool haveEqualTimes(const struct stat& some, const struct stat& other) {
    return some.st_mtim.tv_sec == other.st_mtim.tv_sec && some.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

bool haveEqualContent(const FilePath& some, const FilePath& other) {
    std::ifstream first(some.bytes(), std::ios::binary);
    std::ifstream second(other.bytes(), std::ios::binary);
    std::array<char, 65536> left{};
    std::array<char, 65536> right{};
    while (first && second) {
        first.read(left.data(), left.size());
        second.read(right.data(), right.size());
        const auto count = first.gcount();
        if (count != second.gcount() || !std::equal(left.begin(), left.begin() + count, right.begin()))
            return false;
        if (count == 0) break;
    }
    return first.eof() && second.eof();
}

/// Whether the file came into being after that moment. False where the file system does not know.
bool isYounger(const FilePath& file, const timespec& moment) {
    struct statx facts{};
    if (statx(AT_FDCWD, file.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME, &facts) != 0) return false;
    if ((facts.stx_mask & STATX_BTIME) == 0) return false;
    const auto seconds = static_cast<std::time_t>(facts.stx_btime.tv_sec);
    return seconds != moment.tv_sec ? seconds > moment.tv_sec : facts.stx_btime.tv_nsec > moment.tv_nsec;
}

/// A copy keeps the time of its source, and is made after its source was last touched. A time can be set
/// back, and not every file system knows all of these; then the content tells.
bool isGoodCopy(const FilePath& source, const FilePath& copy) {
    const std::optional<struct stat> original = statusOf(source);
    if (!original) return true;
    const std::optional<struct stat> stored = statusOf(copy);
    if (!stored || !S_ISREG(original->st_mode) || stored->st_size != original->st_size) return false;
    const bool isUntouched = haveEqualTimes(*original, *stored) && isYounger(copy, original->st_ctim);
    return isUntouched || haveEqualContent(source, copy);
}

}  // namespace

std::optional<std::string> objectionToCopies(const std::vector<RecoveryVaultEntry>& copies) {
    for (const RecoveryVaultEntry& entry : copies) {
        const FilePath source = entry.originalWorktreePath.appending(entry.relativePath.bytes());
        if (!isGoodCopy(source, entry.storedPath))
            return entry.relativePath.display() + " changed after it was copied to the Recovery Vault.";
    }
    return std::nullopt;
}

}  // namespace cairnfield
