// One `git --version` through the runner beside the least that any program must do for it: spawn, read both
// pipes to their ends, wait. The two take turns, so that whatever else the machine does meets both.

#include "Platform/Linux/LinuxChildProcess.h"
#include "Services/Process/CommandEnvironment.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace cairnfield;

constexpr const char* git = "/usr/bin/git";

std::string readToEnd(int fd) {
    std::string bytes;
    std::array<char, 65536> block;
    ssize_t count = 0;
    while ((count = ::read(fd, block.data(), block.size())) > 0)
        bytes.append(block.data(), static_cast<std::size_t>(count));
    ::close(fd);
    return bytes;
}

void runRaw(const std::vector<std::string>& environment) {
    std::array<int, 2> output{};
    std::array<int, 2> error{};
    if (::pipe2(output.data(), O_CLOEXEC) != 0 || ::pipe2(error.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("pipe2");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, error[1], STDERR_FILENO);
    std::string program = git;
    std::string argument = "--version";
    std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
    std::vector<char*> variables;
    for (const std::string& pair : environment) variables.push_back(const_cast<char*>(pair.c_str()));
    variables.push_back(nullptr);
    pid_t pid = -1;
    const int failed = ::posix_spawn(&pid, git, &actions, nullptr, arguments.data(), variables.data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    ::close(error[1]);
    const std::string text = readToEnd(output[0]);
    readToEnd(error[0]);
    int status = 0;
    if (failed != 0 || ::waitpid(pid, &status, 0) != pid || status != 0 || text.empty())
        throw std::runtime_error("the raw command failed");
}

Task<> runOurs(SystemProcessRunner& runner, Environment environment) {
    CommandInvocation invocation;
    invocation.executableURL = FilePath(git);
    invocation.arguments = {"--version"};
    invocation.environment = std::move(environment);
    invocation.timeout = std::chrono::seconds(30);
    const CommandResult result = co_await runner.run(std::move(invocation));
    if (!result.succeeded() || result.standardOutput.empty()) throw std::runtime_error("our command failed");
}

struct Cost {
    double wall = 0;       ///< microseconds
    double processor = 0;  ///< microseconds, of this process and of the children waited for
};

double processorTime() {
    double total = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        ::getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            total += static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    }
    return total;
}

template <class F>
Cost costOf(const F& work) {
    const double processor = processorTime();
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::micro> wall = std::chrono::steady_clock::now() - begin;
    return {wall.count(), processorTime() - processor};
}

double median(std::vector<Cost> costs, double Cost::* part) {
    const auto middle = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() / 2);
    std::nth_element(costs.begin(), middle, costs.end(),
                     [part](const Cost& a, const Cost& b) { return a.*part < b.*part; });
    return (*middle).*part;
}

/// One iteration is one pair. Its manual time is ours alone.
void oneCommand(benchmark::State& state) {
    ThreadPool pool(2);
    Reactor reactor;
    const ReactorClock clock(reactor);
    LinuxChildProcessStarter starter(reactor);
    SystemProcessRunner runner(starter, clock, pool);
    const Environment environment = CommandEnvironment::noninteractive();
    std::vector<std::string> pairs;
    for (const auto& [key, value] : environment) pairs.push_back(key + '=' + value);

    const auto raw = [&pairs] { runRaw(pairs); };
    const auto ours = [&runner, &environment, &pool] { runBlocking(runOurs(runner, environment).on(pool)); };
    std::vector<Cost> rawCosts;
    std::vector<Cost> ourCosts;
    bool rawFirst = true;
    for (auto _ : state) {
        if (rawFirst) rawCosts.push_back(costOf(raw));
        ourCosts.push_back(costOf(ours));
        if (!rawFirst) rawCosts.push_back(costOf(raw));
        rawFirst = !rawFirst;
        state.SetIterationTime(ourCosts.back().wall / 1e6);
    }
    state.counters["raw_us"] = median(rawCosts, &Cost::wall);
    state.counters["ours_us"] = median(ourCosts, &Cost::wall);
    state.counters["wall_ratio"] = median(ourCosts, &Cost::wall) / median(rawCosts, &Cost::wall);
    state.counters["raw_cpu_us"] = median(rawCosts, &Cost::processor);
    state.counters["ours_cpu_us"] = median(ourCosts, &Cost::processor);
    state.counters["cpu_ratio"] = median(ourCosts, &Cost::processor) / median(rawCosts, &Cost::processor);
}

}  // namespace

BENCHMARK(oneCommand)
    ->Name("git --version, runner against raw spawn")
    ->Iterations(1000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
