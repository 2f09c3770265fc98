#pragma once

#include <utility>

namespace cairnfield {

/// Owns one open file descriptor and closes it. Whoever opens it asks for close-on-exec: this class sets no
/// flags.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) noexcept : fd_(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    ~FileDescriptor() { reset(); }

    /// -1 when it holds none.
    [[nodiscard]] int get() const noexcept { return fd_; }
    [[nodiscard]] explicit operator bool() const noexcept { return fd_ >= 0; }

    /// Hands the descriptor over, unclosed.
    [[nodiscard]] int release() noexcept { return std::exchange(fd_, -1); }
    /// Closes what it holds and takes the new one. Leaves errno as it was.
    void reset(int fd = -1) noexcept;

private:
    int fd_ = -1;
};

}  // namespace cairnfield
