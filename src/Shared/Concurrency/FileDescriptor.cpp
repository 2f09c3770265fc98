#include "Shared/Concurrency/FileDescriptor.h"

#include <cerrno>
#include <unistd.h>

namespace cairnfield {

void FileDescriptor::reset(int fd) noexcept {
    const int old = std::exchange(fd_, fd);
    if (old < 0) return;
    const int error = errno;
    ::close(old);
    errno = error;
}

}  // namespace cairnfield
