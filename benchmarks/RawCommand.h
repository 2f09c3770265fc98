#pragma once
// The least that any program must do for a command: spawn, read both pipes to their ends, wait.

#include "Services/Process/ProcessRunning.h"

#include <benchmark/benchmark.h>
#include <sys/wait.h>

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace cairnfield {

/// A command in the form that posix_spawn takes, made before any time is measured.
class RawCommand {
public:
    explicit RawCommand(const CommandInvocation& invocation)
        : program_(invocation.executableURL.bytes()), directory_(invocation.currentDirectory->bytes()) {
        texts_.push_back(program_);
        for (const std::string& argument : invocation.arguments) texts_.push_back(argument);
        for (const auto& [key, value] : invocation.environment) variables_.push_back(joined(key, value));
    }

    void run() const {
        std::array<int, 2> output{};
        std::array<int, 2> error{};
        if (pipe2(output.data(), O_CLOEXEC) != 0 || pipe2(error.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("pipe2");
        posix_spawn_file_actions_t actions{};
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addchdir_np(&actions, directory_.c_str());
        posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, error[1], STDERR_FILENO);
        pid_t child = -1;
        const int failed = posix_spawn(&child, program_.c_str(), &actions, nullptr, pointers(texts_).data(),
                                       pointers(variables_).data());
        posix_spawn_file_actions_destroy(&actions);
        close(output[1]);
        close(error[1]);
        readBothToEnd(output[0], error[0]);
        int status = 0;
        if (failed != 0 || waitpid(child, &status, 0) != child)
            throw std::runtime_error("the raw command failed");
    }

private:
    static std::string joined(std::string key, const std::string& value) {
        key += '=';
        return key += value;
    }

    static std::vector<char*> pointers(const std::vector<std::string>& texts) {
        std::vector<char*> all;
        all.reserve(texts.size() + 1);
        for (const std::string& text : texts) all.push_back(const_cast<char*>(text.c_str()));
        all.push_back(nullptr);
        return all;
    }

    static void readBothToEnd(int output, int error) {
        std::string bytes;
        std::array<char, 65536> block;
        std::array<pollfd, 2> streams{pollfd{output, POLLIN, 0}, pollfd{error, POLLIN, 0}};
        for (int open = 2; open > 0;) {
            if (poll(streams.data(), streams.size(), -1) < 0) continue;
            for (pollfd& stream : streams) {
                if (stream.revents == 0) continue;
                const ssize_t count = read(stream.fd, block.data(), block.size());
                if (count > 0) {
                    bytes.append(block.data(), static_cast<std::size_t>(count));
                    continue;
                }
                close(stream.fd);
                stream.fd = -1;
                --open;
            }
        }
        benchmark::DoNotOptimize(bytes);
    }

    std::string program_;
    std::string directory_;
    std::vector<std::string> texts_;
    std::vector<std::string> variables_;
};

}  // namespace cairnfield
