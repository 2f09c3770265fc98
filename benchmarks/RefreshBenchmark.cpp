// One refresh of a main worktree and 40 linked ones beside a bare loop that spawns the same git commands one
// after the other, reads what they print and waits. To hold: at most 1.08 of the loop's wall and processor
// time. The repository is made anew in a temporary directory: 3,000 files, and worktrees that are clean,
// edited, or hold untracked and ignored files.

#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "RawCommand.h"
#include "SampleProject.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/Git/WorktreeCatalog.h"
#include "Services/Process/ExecutableLocator.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "SideBySide.h"
#include "support/GitRepository.h"
#include "support/RecordingProcessRunner.h"
#include "support/TemporaryDirectory.h"

#include <stdexcept>

namespace {

using namespace cairnfield;

constexpr int linkedWorktrees = 40;
constexpr int directories = 100;
constexpr int filesInEach = 30;
constexpr int rounds = 9;

void makeProject(const TemporaryDirectory& home) {
    const GitRepository hub = makeHub(home, directories, filesInEach);
    const GitRepository project = hub.cloneTo(home / "root/project");
    for (const char* pattern : {"node_modules/", "*.log", ".env"}) project.ignore(pattern);
    for (int number = 0; number < linkedWorktrees; ++number) {
        const std::string branch = "feature-" + std::to_string(number);
        const GitRepository tree = project.addWorktree(home / ("root/" + branch), branch);
        if (number % 2 == 0) tree.commitFile("done.txt", branch);
        if (number % 4 == 0) tree.publish();
        if (number % 3 == 0) tree.write("module1/file1.cpp", "edited\n");
        if (number % 5 == 0) tree.write("notes/untracked.txt");
        for (int file = 0; file < 200; ++file) tree.write("node_modules/p/" + std::to_string(file) + ".js");
        tree.write("build.log");
        if (number % 7 == 0) tree.write(".env");
    }
}

/// The services as the program composes them.
struct Services {
    ThreadPool pool{2};
    ThreadPool blocking{1};
    ThreadPool walking{2};
    Reactor reactor;
    ReactorClock continuousClock{reactor};
    SystemWallClock wallClock;
    LinuxChildProcessStarter starter{reactor};
    SystemProcessRunner processes{starter, continuousClock, pool};
    RecordingProcessRunner recorder{processes};
    LinuxTreeMeasurer measurer{walking, wallClock};
    DirectorySizeScanner scanner{pool, walking, measurer, wallClock};
    FileSystemActivityDetector detector{wallClock};

    std::vector<Worktree> refresh(ProcessRunning& runner, const FilePath& root) {
        const GitCommandRunner git(runner, ExecutableLocator(std::nullopt, std::nullopt).locateGit());
        WorktreeCatalog catalog(pool, std::make_unique<RepositoryDiscoveryService>(blocking),
                                std::make_unique<GitWorktreeInspector>(git, scanner, detector), git);
        return runBlocking(catalog.refresh({root}, {}));
    }
};

void refreshBesideBareLoop(benchmark::State& state) {
    const TemporaryDirectory home;
    makeProject(home);
    const FilePath root = home / "root";
    Services services;
    const std::size_t found = services.refresh(services.recorder, root).size();
    std::vector<RawCommand> commands;
    for (const CommandInvocation& command : services.recorder.take()) commands.emplace_back(command);
    if (found != linkedWorktrees + 1) throw std::runtime_error("the refresh missed a worktree");

    const auto ours = [&services, &root, found] {
        if (services.refresh(services.processes, root).size() != found)
            throw std::runtime_error("a worktree is missing");
    };
    const auto bare = [&commands] {
        for (const RawCommand& command : commands) command.run();
    };
    measureSideBySide(state, ours, bare);
    state.counters["commands"] = static_cast<double>(commands.size());
}

}  // namespace

BENCHMARK(refreshBesideBareLoop)
    ->Name("refresh of 1 main and 40 linked worktrees, against a bare loop of the same commands")
    ->Iterations(rounds)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
