#pragma once
// The real runner on real children, in a directory of the test's own.

#include "NamedPipe.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace cairnfield {

class ProcessRunnerFixture : public testing::Test {
protected:
    static CommandInvocation command(std::string program, std::vector<std::string> arguments = {}) {
        CommandInvocation invocation;
        invocation.executableURL = FilePath(std::move(program));
        invocation.arguments = std::move(arguments);
        invocation.environment = {{"PATH", "/usr/bin:/bin"}};
        invocation.timeout = std::chrono::minutes(5);
        return invocation;
    }
    /// `script` may use what `arguments` hold as $1, $2 and so on.
    static CommandInvocation shell(std::string script, std::vector<std::string> arguments = {}) {
        std::vector<std::string> all{"-c", std::move(script), "sh"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return command("/bin/sh", std::move(all));
    }

    CommandResult run(CommandInvocation invocation) {
        return waitFor(pool_, runner_.run(std::move(invocation)));
    }
    TaskHandle<CommandResult> start(CommandInvocation invocation) {
        return spawn(pool_, runner_.run(std::move(invocation)));
    }

    CairnfieldError failureOf(CommandInvocation invocation) {
        try {
            run(std::move(invocation));
        } catch (const CairnfieldError& error) {
            return error;
        }
        ADD_FAILURE() << "did not fail";
        return CairnfieldError(CairnfieldError::Offline{});
    }

    [[nodiscard]] NamedPipe makePipe(std::string_view name) const { return NamedPipe(directory_ / name); }

    [[nodiscard]] std::chrono::nanoseconds elapsed() const { return BootClock::now() - begun_; }

    /// How many descriptors this process has open.
    static std::ptrdiff_t openDescriptors() {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return std::distance(begin(open), end(open));
    }

    const BootClock::time_point begun_ = BootClock::now();
    TemporaryDirectory directory_;
    ThreadPool pool_{2};
    Reactor reactor_;
    ReactorClock clock_{reactor_};
    LinuxChildProcessStarter starter_{reactor_};
    SystemProcessRunner runner_{starter_, clock_, pool_};
};

}  // namespace cairnfield
