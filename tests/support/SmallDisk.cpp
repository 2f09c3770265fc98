#include "support/SmallDisk.h"

#include "Shared/Concurrency/FileDescriptor.h"
#include "support/ForkedOutcome.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <exception>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace cairnfield {

namespace {

constexpr std::string_view notAllowed = "may not mount";

void writeLine(const char* file, const std::string& line) {
    const FileDescriptor descriptor(open(file, O_WRONLY | O_CLOEXEC));
    if (descriptor && write(descriptor.get(), line.data(), line.size()) < 0) return;
}

bool enterOwnNamespace() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        writeLine("/proc/self/setgroups", "deny");
        writeLine("/proc/self/uid_map", "0 " + user + " 1");
        writeLine("/proc/self/gid_map", "0 " + group + " 1");
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

std::string outcomeOf(std::size_t bytes, const FilePath& place,
                      const std::function<std::string(const FilePath&)>& body) {
    const std::string options = "mode=0755,size=" + std::to_string(bytes);
    if (!enterOwnNamespace() || mount("tmpfs", place.c_str(), "tmpfs", 0, options.c_str()) != 0)
        return std::string(notAllowed);
    try {
        return body(place);
    } catch (const std::exception& failure) {
        return std::string("threw: ") + failure.what();
    }
}

}  // namespace

std::optional<std::string> onSmallDisk(std::size_t bytes,
                                       const std::function<std::string(const FilePath&)>& body) {
    const TemporaryDirectory place;
    std::string outcome = outcomeInChild([&] { return outcomeOf(bytes, place.path(), body); });
    if (outcome == notAllowed) return std::nullopt;
    return outcome;
}

FilePath fillDisk(const FilePath& disk) {
    FilePath filler = disk.appending("filler");
    const FileDescriptor file(open(filler.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    EXPECT_TRUE(file);
    const std::string block(4096, 'x');
    while (write(file.get(), block.data(), block.size()) > 0) {
    }
    EXPECT_EQ(errno, ENOSPC);
    return filler;
}

}  // namespace cairnfield
