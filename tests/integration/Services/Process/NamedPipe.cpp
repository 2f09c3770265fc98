#include "NamedPipe.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace cairnfield {

NamedPipe::NamedPipe(FilePath path) : path_(std::move(path)) {
    EXPECT_EQ(mkfifo(path_.c_str(), 0600), 0) << path_.bytes();
    pipe_.reset(open(path_.c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_TRUE(pipe_) << path_.bytes();
}

std::string NamedPipe::line() {
    for (;;) {
        if (const std::size_t end = pending_.find('\n'); end != std::string::npos) {
            const std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        pollfd question{pipe_.get(), POLLIN, 0};
        if (poll(&question, 1, 30'000) <= 0) {
            ADD_FAILURE() << "nothing came through " << path_.bytes();
            return {};
        }
        std::array<char, 4096> block;
        const ssize_t count = read(pipe_.get(), block.data(), block.size());
        if (count > 0) pending_.append(block.data(), static_cast<std::size_t>(count));
    }
}

void NamedPipe::write(std::string_view text) const {
    EXPECT_EQ(::write(pipe_.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

}  // namespace cairnfield
