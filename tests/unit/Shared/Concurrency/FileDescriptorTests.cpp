#include "Shared/Concurrency/FileDescriptor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cairnfield {
namespace {

int openedNull() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}
bool isOpen(int fd) {
    return ::fcntl(fd, F_GETFD) >= 0;
}

TEST(FileDescriptor, ClosesWhatItOwns) {
    const int fd = openedNull();
    {
        const FileDescriptor owner(fd);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.get(), fd);
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(FileDescriptor, HoldsNothingAtFirst) {
    const FileDescriptor none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.get(), -1);
}

TEST(FileDescriptor, MovesOwnershipAndClosesWhatItReplaces) {
    const int first = openedNull(), second = openedNull();
    FileDescriptor a(first), b(second);
    a = std::move(b);
    EXPECT_FALSE(isOpen(first));
    EXPECT_EQ(a.get(), second);
    const FileDescriptor c(std::move(a));
    EXPECT_EQ(c.get(), second);
    EXPECT_TRUE(isOpen(second));
}

TEST(FileDescriptor, KeepsItsDescriptorWhenMovedToItself) {
    FileDescriptor a(openedNull());
    FileDescriptor& same = a;
    a = std::move(same);
    EXPECT_TRUE(isOpen(a.get()));
}

TEST(FileDescriptor, ReleasesWithoutClosing) {
    FileDescriptor owner(openedNull());
    const int fd = owner.release();
    EXPECT_FALSE(owner);
    EXPECT_TRUE(isOpen(fd));
    ::close(fd);
}

TEST(FileDescriptor, ClosingLeavesErrnoAlone) {
    FileDescriptor owner(openedNull());
    ::close(owner.get());  // so that closing again fails with EBADF
    errno = ENOENT;
    owner.reset();
    EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace cairnfield
