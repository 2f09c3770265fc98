#include "Services/Process/BlockingCommand.h"

#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace cairnfield {

namespace {

std::string readToEnd(int fd) {
    std::string bytes;
    std::array<char, 4096> block;
    for (;;) {
        const ssize_t count = ::read(fd, block.data(), block.size());
        if (count > 0) {
            bytes.append(block.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

/// For the child: no signal blocked, and every one with its default disposition.
class DefaultSignals {
public:
    DefaultSignals() {
        ::posix_spawnattr_init(&value_);
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&value_, &none);
        ::posix_spawnattr_setsigdefault(&value_, &all);
        ::posix_spawnattr_setflags(&value_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~DefaultSignals() { ::posix_spawnattr_destroy(&value_); }
    DefaultSignals(const DefaultSignals&) = delete;
    DefaultSignals& operator=(const DefaultSignals&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &value_; }

private:
    posix_spawnattr_t value_;
};

std::optional<pid_t> spawn(const FilePath& executable, const std::vector<std::string>& arguments,
                           const Environment& environment, int output) {
    std::vector<char*> argumentPointers{const_cast<char*>(executable.c_str())};
    for (const std::string& argument : arguments)
        argumentPointers.push_back(const_cast<char*>(argument.c_str()));
    argumentPointers.push_back(nullptr);
    std::vector<std::string> pairs;
    pairs.reserve(environment.size());
    std::vector<char*> pairPointers;
    for (const auto& [key, value] : environment)
        pairPointers.push_back(pairs.emplace_back(key + '=' + value).data());
    pairPointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    if (::posix_spawn_file_actions_init(&actions) != 0) return std::nullopt;
    const DefaultSignals signals;
    pid_t pid = -1;
    const bool launched =
        ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO) == 0 &&
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0) == 0 &&
        ::posix_spawn(&pid, executable.c_str(), &actions, signals.get(), argumentPointers.data(),
                      pairPointers.data()) == 0;
    ::posix_spawn_file_actions_destroy(&actions);
    if (!launched) return std::nullopt;
    return pid;
}

}  // namespace

std::optional<std::string> outputOfBlockingCommand(const FilePath& executable,
                                                   const std::vector<std::string>& arguments,
                                                   const Environment& environment) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    const std::optional<pid_t> pid = spawn(executable, arguments, environment, writeEnd.get());
    writeEnd.reset();
    if (!pid) return std::nullopt;
    std::string output = readToEnd(readEnd.get());
    int status = 0;
    while (::waitpid(*pid, &status, 0) < 0) {
        if (errno != EINTR) return std::nullopt;
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return output;
}

}  // namespace cairnfield
