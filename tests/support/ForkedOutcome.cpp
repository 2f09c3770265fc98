#include "support/ForkedOutcome.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <unistd.h>

namespace cairnfield {

std::string outcomeInChild(const std::function<std::string()>& body) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    EXPECT_GE(child, 0);
    if (child == 0) {
        const std::string outcome = body();
        const ssize_t written = write(ends[1], outcome.data(), outcome.size());
        _exit(written == static_cast<ssize_t>(outcome.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::string outcome;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;)
        outcome.append(buffer.data(), static_cast<std::size_t>(count));
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return outcome;
}

}  // namespace cairnfield
