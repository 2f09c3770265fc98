#include "Shared/Files/AtomicFile.h"

#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Logging/Log.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <system_error>
#include <unistd.h>

namespace cairnfield::AtomicFile {

namespace {

constexpr std::string_view mark = ".tmp";
constexpr std::string_view randomPart = "XXXXXX";  // mkostemp's pattern

[[noreturn]] void fail(int code, const FilePath& path) {
    throw std::system_error(code, std::generic_category(), path.display());
}

std::string messageOf(int code) {
    return std::generic_category().message(code);
}

FilePath folderOf(const FilePath& target) {
    const FilePath parent = target.parent();
    return parent.isEmpty() ? FilePath(".") : parent;
}

/// A file that goes away again unless it has replaced its target.
class TemporaryFile {
public:
    explicit TemporaryFile(const FilePath& target)
        : name_(target.bytes() + std::string(mark) + std::string(randomPart)),
          descriptor_(mkostemp(name_.data(), O_CLOEXEC)) {
        if (!descriptor_) fail(errno, target);
    }
    ~TemporaryFile() {
        if (!name_.empty()) unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void append(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor_.get(), bytes.data(), bytes.size());
            if (count >= 0) {
                bytes.remove_prefix(static_cast<std::size_t>(count));
            } else if (errno != EINTR) {
                fail(errno, FilePath(name_));
            }
        }
    }

    void sync() const {
        if (fsync(descriptor_.get()) != 0) fail(errno, FilePath(name_));
    }

    void replace(const FilePath& target) {
        if (rename(name_.c_str(), target.c_str()) != 0) fail(errno, target);
        name_.clear();
    }

    /// False when something has the name.
    bool appearAs(const FilePath& target) {
        if (link(name_.c_str(), target.c_str()) == 0) return true;  // the first name goes with this object
        if (errno == EEXIST) return false;
        // Not every file system gives a file two names.
        if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS) fail(errno, target);
        if (renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) != 0) {
            if (errno == EEXIST) return false;
            fail(errno, target);
        }
        name_.clear();
        return true;
    }

private:
    std::string name_;  ///< empty once it has replaced the target
    FileDescriptor descriptor_;
};

void syncFolder(const FilePath& target) {
    const FilePath folder = folderOf(target);
    const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor && fsync(descriptor.get()) == 0) return;
    Log::persistence().error("Could not sync {}: {}", folder.display(), messageOf(errno));
}

bool isLeftover(std::string_view name, std::string_view targetName) {
    if (name.size() != targetName.size() + mark.size() + randomPart.size()) return false;
    if (!name.starts_with(targetName)) return false;
    name.remove_prefix(targetName.size());
    if (!name.starts_with(mark)) return false;
    name.remove_prefix(mark.size());
    return std::ranges::all_of(name, [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
}

}  // namespace

void write(const FilePath& target, std::string_view bytes) {
    TemporaryFile file(target);
    file.append(bytes);
    file.sync();
    file.replace(target);
    syncFolder(target);
}

bool writeNew(const FilePath& target, std::string_view bytes) {
    {
        TemporaryFile file(target);
        file.append(bytes);
        file.sync();
        if (!file.appearAs(target)) return false;
    }
    syncFolder(target);
    return true;
}

void removeLeftovers(const FilePath& target) {
    const FilePath folder = folderOf(target);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
    if (!listing) {
        if (errno != ENOENT)
            Log::persistence().error("Could not list {}: {}", folder.display(), messageOf(errno));
        return;
    }
    const std::string targetName = target.lastComponent();
    while (const dirent* entry = readdir(listing.get())) {
        if (!isLeftover(entry->d_name, targetName)) continue;
        if (unlinkat(dirfd(listing.get()), entry->d_name, 0) == 0) continue;
        Log::persistence().error("Could not remove {}: {}", folder.appending(entry->d_name).display(),
                                 messageOf(errno));
    }
}

}  // namespace cairnfield::AtomicFile
