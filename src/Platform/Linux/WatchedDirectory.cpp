#include "Platform/Linux/WatchedDirectory.h"

#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cairnfield {

namespace {

constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

OpenedDirectory resultOf(long opened) {
    if (opened < 0) return {.descriptor = {}, .error = errno};
    return {.descriptor = FileDescriptor(static_cast<int>(opened)), .error = 0};
}

}  // namespace

OpenedDirectory openWithoutLinks(const std::string& path) {
    open_how how{};
    how.flags = flags;
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    long opened = syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how);
    // Older systems, and sandboxes, do not know the call: only the last component is looked at then.
    if (opened < 0 && (errno == ENOSYS || errno == EPERM)) opened = open(path.c_str(), flags);
    return resultOf(opened);
}

OpenedDirectory openInside(int parent, const std::string& name) {
    return resultOf(openat(parent, name.c_str(), flags));
}

bool standsOn(dev_t device, int parent, const std::string& name) {
    struct stat standing = {};
    return fstatat(parent, name.c_str(), &standing, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) == 0 &&
           standing.st_dev == device;
}

std::string pathOfDescriptor(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace cairnfield
