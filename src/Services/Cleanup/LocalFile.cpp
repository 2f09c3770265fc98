#include "Services/Cleanup/LocalFile.h"

#include "Shared/Errors/CairnfieldError.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

[[noreturn]] void refuse(const IgnoredEntry& entry, const std::string& why) {
    throw CairnfieldError(CairnfieldError::RecoveryVaultFailure{entry.name + why});
}

[[noreturn]] void fail(int code, const IgnoredEntry& entry) {
    refuse(entry, ": " + std::generic_category().message(code));
}

std::string pathOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/// Where what the descriptor stands for is at this moment, all links resolved. Empty when it cannot be told.
std::string locationOf(int descriptor) {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = readlink(pathOf(descriptor).c_str(), buffer.data(), buffer.size());
    if (length <= 0 || length == static_cast<ssize_t>(buffer.size())) return {};
    return {buffer.data(), static_cast<std::size_t>(length)};
}

bool isInside(const std::string& location, const std::string& folder) {
    if (folder.empty() || !location.starts_with(folder)) return false;
    return folder == "/" || (location.size() > folder.size() && location[folder.size()] == '/');
}

/// Whether the name itself, and not what it leads to, is a link of the worktree: one that is only reached
/// through a folder that leads elsewhere is not.
bool isLinkOf(int root, const char* name) {
    const FileDescriptor link(openat(root, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status{};
    if (!link || fstat(link.get(), &status) != 0 || !S_ISLNK(status.st_mode)) return false;
    return isInside(locationOf(link.get()), locationOf(root));
}

bool meansNowhere(int code) {
    return code == ENOENT || code == ENOTDIR || code == ELOOP;
}

}  // namespace

std::vector<std::string> componentsInside(const IgnoredEntry& entry) {
    const FilePath path(entry.relativePath);
    std::vector<std::string> components = path.components();
    const bool leadsOut = path.isAbsolute() || components.empty() ||
                          std::ranges::any_of(components, [](const std::string& component) {
                              return component == ".." || component == ".";
                          });
    if (leadsOut) refuse(entry, " is not a path inside the worktree.");
    return components;
}

bool isLinkThatKeepsNothing(const FilePath& worktree, const IgnoredEntry& entry) {
    const FileDescriptor root(open(worktree.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const char* name = entry.relativePath.c_str();
    if (!root || !isLinkOf(root.get(), name)) return false;
    const FileDescriptor found(openat(root.get(), name, O_PATH | O_CLOEXEC));
    if (!found) return meansNowhere(errno);
    struct stat status{};
    const std::string location = locationOf(found.get());
    if (!location.starts_with('/') || fstat(found.get(), &status) != 0) return false;
    return S_ISDIR(status.st_mode) || !isInside(location, locationOf(root.get()));
}

std::optional<FileDescriptor> openLocalFile(const FilePath& worktree, const IgnoredEntry& entry, int vault) {
    (void)componentsInside(entry);
    const FileDescriptor root(open(worktree.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!root && (errno == ENOENT || errno == ENOTDIR)) return std::nullopt;
    if (!root) fail(errno, entry);
    struct stat status{};
    const char* name = entry.relativePath.c_str();
    if (fstatat(root.get(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        fail(errno, entry);
    }

    if (isLinkThatKeepsNothing(worktree, entry)) return std::nullopt;

    // First without opening it for anything, since opening a device or a pipe can have consequences. What is
    // looked at is then what is read, whatever happens to the names in between.
    const FileDescriptor found(openat(root.get(), name, O_PATH | O_CLOEXEC));
    if (!found || fstat(found.get(), &status) != 0) fail(errno, entry);
    const std::string location = locationOf(found.get());
    if (!isInside(location, locationOf(root.get())))
        refuse(entry, " is a link that leads out of the worktree; review it manually.");
    if (isInside(location, locationOf(vault)))
        refuse(entry, " is a link that leads into the vault; review it manually.");
    if (!S_ISREG(status.st_mode)) refuse(entry, " is not a file; review it manually.");
    FileDescriptor file(open(pathOf(found.get()).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) fail(errno, entry);
    return file;
}

std::int64_t sizeThatCounts(const FilePath& worktree, const IgnoredEntry& entry) {
    constexpr int noVault = -1;
    try {
        const std::optional<FileDescriptor> file = openLocalFile(worktree, entry, noVault);
        struct stat status{};
        if (!file || fstat(file->get(), &status) != 0) return entry.sizeBytes;
        const off_t hole = lseek(file->get(), 0, SEEK_HOLE);
        const bool hasHoles = hole >= 0 && hole < status.st_size;
        return hasHoles ? std::max<std::int64_t>(entry.sizeBytes, status.st_size) : entry.sizeBytes;
    } catch (const CairnfieldError&) {
        return entry.sizeBytes;  // whoever copies it meets the same, in its turn
    }
}

}  // namespace cairnfield
