#include "Platform/Linux/LinuxVolumeInformation.h"

#include "Platform/Linux/MountTable.h"
#include "Shared/Files/Files.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <limits>
#include <memory>
#include <system_error>

namespace cairnfield {

namespace {

[[noreturn]] void fail(const FilePath& path) {
    throw std::system_error(errno, std::generic_category(), path.display());
}

FilePath withoutLinks(const FilePath& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), std::free);
    if (!resolved) fail(path);
    return FilePath(resolved.get());
}

dev_t deviceOf(const FilePath& path) {
    struct stat status{};
    if (stat(path.c_str(), &status) != 0) fail(path);
    return status.st_dev;
}

/// Of a device file. Absent for everything else.
std::optional<dev_t> deviceBehind(const FilePath& file) {
    struct stat status{};
    if (stat(file.c_str(), &status) != 0) return std::nullopt;
    if (!S_ISBLK(status.st_mode) && !S_ISCHR(status.st_mode)) return std::nullopt;
    return status.st_rdev;
}

FilePath rootOf(const FilePath& canonical, dev_t device) {
    FilePath root = canonical;
    for (FilePath above = root.parent(); above != root; above = root.parent()) {
        struct stat status{};
        if (stat(above.c_str(), &status) != 0 || status.st_dev != device) break;
        root = above;
    }
    return root;
}

/// Absent as well when the table cannot be read: what it tells here is a name, and no reason to do without
/// the rest.
std::optional<dev_t> deviceMountedAt(const FilePath& root, const FilePath& mountinfo) {
    std::optional<std::string> table;
    try {
        table = readFile(mountinfo);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    if (!table) return std::nullopt;
    const std::optional<FilePath> source = sourceOfMount(*table, root);
    if (!source || !source->isAbsolute()) return std::nullopt;
    return deviceBehind(*source);
}

/// Held at what a signed count can say: some file systems report figures beyond any disk.
std::int64_t bytesOf(std::uint64_t blocks, std::uint64_t blockSize) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    std::int64_t bytes = 0;
    return __builtin_mul_overflow(blocks, blockSize, &bytes) ? most : bytes;
}

int hexadecimalDigit(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

}  // namespace

std::string decodedLabel(std::string_view name) {
    std::string label;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool mayBeEscape = name.substr(i).starts_with("\\x") && i + 3 < name.size();
        const int high = mayBeEscape ? hexadecimalDigit(name[i + 2]) : -1;
        const int low = mayBeEscape ? hexadecimalDigit(name[i + 3]) : -1;
        if (high < 0 || low < 0) {
            label += name[i];
            continue;
        }
        label += static_cast<char>(high * 16 + low);
        i += 3;
    }
    return label;
}

std::optional<std::string> labelOfDevice(dev_t device, const FilePath& labels) {
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(labels.c_str()), closedir);
    if (!listing) return std::nullopt;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (deviceBehind(labels.appending(name)) == device) return decodedLabel(name);
    }
    return std::nullopt;
}

VolumeFacts LinuxVolumeInformation::facts(const FilePath& path) const {
    struct statvfs capacity{};
    if (statvfs(path.c_str(), &capacity) != 0) fail(path);
    const FilePath canonical = withoutLinks(path);
    const dev_t device = deviceOf(canonical);

    VolumeFacts facts;
    facts.root = rootOf(canonical, device);
    // File systems without storage of their own report no blocks at all.
    if (capacity.f_blocks > 0) {
        facts.totalCapacity = bytesOf(capacity.f_blocks, capacity.f_frsize);
        facts.availableCapacity = bytesOf(capacity.f_bavail, capacity.f_frsize);
    }
    facts.name = labelOfDevice(device, labels_);
    // A made-up number: the file system spans devices or subvolumes, and only the table of mounts names one.
    if (!facts.name && major(device) == 0) {
        const std::optional<dev_t> behind = deviceMountedAt(*facts.root, mountinfo_);
        if (behind) facts.name = labelOfDevice(*behind, labels_);
    }
    return facts;
}

std::vector<FilePath> LinuxVolumeInformation::mountPoints() const {
    const std::optional<std::string> table = readFile(mountinfo_);
    if (!table || table->empty())
        throw std::system_error(ENOENT, std::generic_category(), mountinfo_.bytes());
    return mountPointsIn(*table);
}

}  // namespace cairnfield
