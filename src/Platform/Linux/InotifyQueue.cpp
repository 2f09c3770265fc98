#include "Platform/Linux/InotifyQueue.h"

#include <sys/inotify.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

InotifyQueue::InotifyQueue()
    : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      buffer_(std::make_unique<std::byte[]>(bufferSize)) {
    if (!descriptor_) throw std::system_error(errno, std::generic_category(), "inotify_init1");
}

InotifyQueue::Added InotifyQueue::add(const char* path, std::uint32_t mask) const noexcept {
    const int watch = inotify_add_watch(descriptor_.get(), path, mask);
    if (watch < 0) return {.watch = 0, .error = errno};
    return {.watch = watch, .error = 0};
}

void InotifyQueue::remove(int watch) const noexcept {
    static_cast<void>(inotify_rm_watch(descriptor_.get(), watch));
}

bool InotifyQueue::fill() {
    filled_ = consumed_ = 0;
    const ssize_t got = read(descriptor_.get(), buffer_.get(), bufferSize);
    if (got <= 0) return false;
    filled_ = static_cast<std::size_t>(got);
    return true;
}

std::optional<InotifyEvent> InotifyQueue::next() {
    if (consumed_ >= filled_) return std::nullopt;
    inotify_event event{};
    std::memcpy(&event, buffer_.get() + consumed_, sizeof event);
    const char* name = reinterpret_cast<const char*>(buffer_.get() + consumed_ + sizeof event);
    consumed_ += sizeof event + event.len;
    return InotifyEvent{.watch = event.wd, .mask = event.mask, .name = {name, strnlen(name, event.len)}};
}

}  // namespace cairnfield
