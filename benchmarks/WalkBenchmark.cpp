// One walk of a tree beside `du -s` of the same tree, warm, in turns, each in a process of its own that does
// nothing else. The trees come from corpora.py: from the folder that CAIRNFIELD_CORPORA names, where they are
// made when they are missing, or else from a temporary one. To hold: processor time at most 0.85 of du's with
// one thread and 0.90 with two, wall time at most 0.50 with two on a quiet machine, memory under 2 MB.

#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Shared/Concurrency/ThreadPool.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace cairnfield;

constexpr std::array kinds = {"nodemods", "worktrees", "flat", "mixed"};
constexpr int rounds = 15;

using Command = std::vector<std::string>;

/// A line of /proc/self/status, in kilobytes.
long statusKilobytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key + ":")) return std::strtol(line.c_str() + key.size() + 1, nullptr, 10);
    throw std::runtime_error("no " + key);
}

/// The child's side: one walk, and its memory above what the process had before.
int measureOnce(const std::string& threads, const std::string& root) {
    const SystemWallClock clock;
    ThreadPool pool(2);
    LinuxTreeMeasurer measurer(
        pool, clock, threads == "1" ? LinuxTreeMeasurer::Threads::one : LinuxTreeMeasurer::Threads::two);
    const long before = statusKilobytes("VmHWM");
    const DirectoryScanResult result = measurer.measure(FilePath(root), {});
    std::cout << result.totalBytes << ' ' << result.fileCount << ' ' << statusKilobytes("VmHWM") - before
              << '\n';
    return 0;
}

struct Cost {
    double wall = 0;       ///< seconds
    double processor = 0;  ///< seconds, user and system
    std::string output;
};

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

Cost costOf(const Command& command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        std::vector<char*> words;
        for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
        words.push_back(nullptr);
        execvp(words[0], words.data());
        _exit(127);
    }
    close(ends[1]);
    Cost cost;
    std::array<char, 4096> block;
    for (ssize_t got = 0; (got = read(ends[0], block.data(), block.size())) > 0;)
        cost.output.append(block.data(), static_cast<std::size_t>(got));
    close(ends[0]);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    cost.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    cost.processor = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error(command.front() + " failed");
    return cost;
}

/// The result names what is compared second, so that the table sets each beside du: "Walk/du/nodemods".
void compare(const std::string& name, const Command& command) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [command](benchmark::State& state) {
                                     double processor = 0;
                                     Cost last;
                                     for (auto _ : state) {
                                         last = costOf(command);
                                         state.SetIterationTime(last.wall);
                                         processor += last.processor;
                                     }
                                     state.counters["cpuSeconds"] =
                                         benchmark::Counter(processor, benchmark::Counter::kAvgIterations);
                                     std::int64_t bytes = 0, files = 0, kilobytes = 0;
                                     if (std::istringstream(last.output) >> bytes >> files >> kilobytes) {
                                         state.counters["files"] = static_cast<double>(files);
                                         state.counters["memoryKB"] = static_cast<double>(kilobytes);
                                     }
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1)
        ->Repetitions(rounds)
        ->ReportAggregatesOnly(true);
}

/// The folder with the trees. One of its own goes when the program ends.
class Corpora {
public:
    Corpora() {
        if (const char* given = std::getenv("CAIRNFIELD_CORPORA")) {
            folder_ = given;
        } else {
            std::string pattern =
                (std::filesystem::temp_directory_path() / "cairnfield-corpora-XXXXXX").native();
            if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp");
            folder_ = pattern;
            isOwn_ = true;
        }
        for (const char* kind : kinds)
            if (!std::filesystem::exists(folder_ / kind))
                static_cast<void>(costOf({"python3", CORPORA_SCRIPT, kind, folder_ / kind}));
    }
    ~Corpora() {
        std::error_code ignored;
        if (isOwn_) std::filesystem::remove_all(folder_, ignored);
    }
    Corpora(const Corpora&) = delete;
    Corpora& operator=(const Corpora&) = delete;

    [[nodiscard]] std::string path(const char* kind) const { return folder_ / kind; }

private:
    std::filesystem::path folder_;
    bool isOwn_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == "--measure") return measureOnce(argv[2], argv[3]);
    // In turns: whatever else the machine does meets all of them.
    std::string inTurns = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, inTurns.data());
    arguments.push_back(nullptr);
    int count = argc + 1;
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

    const Corpora corpora;
    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    for (const char* kind : kinds) {
        const std::string root = corpora.path(kind);
        static_cast<void>(costOf({"du", "-s", root}));
        compare(std::string("Walk/du/") + kind, {"du", "-s", root});
        compare(std::string("Walk/oneThread/") + kind, {self, "--measure", "1", root});
        compare(std::string("Walk/twoThreads/") + kind, {self, "--measure", "2", root});
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
