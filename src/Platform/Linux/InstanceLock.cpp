#include "Platform/Linux/InstanceLock.h"

#include "Shared/Files/Files.h"
#include "Shared/Logging/Log.h"

#include <sys/file.h>

#include <cerrno>
#include <fcntl.h>
#include <system_error>

namespace cairnfield {

InstanceLock::Outcome InstanceLock::take(const FilePath& file) {
    try {
        ensureDirectory(file.parent());
        FileDescriptor opened(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!opened) throw std::system_error(errno, std::generic_category());
        if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK) return Outcome::heldByAnother;
            throw std::system_error(errno, std::generic_category());
        }
        file_ = std::move(opened);
        return Outcome::taken;
    } catch (const std::system_error& error) {
        Log::app().warn("{} cannot be locked: {}", file.display(), error.code().message());
        return Outcome::unavailable;
    }
}

}  // namespace cairnfield
