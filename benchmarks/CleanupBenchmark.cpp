// A whole cleanup, from the preflight to the receipt on the disk, beside a bare loop that spawns the very
// same git commands one after the other, reads what they print and waits. To hold: at most 1.10 of the loop's
// wall time. Every round cleans up two worktrees that are alike, one in each way: 2,000 files, some of them
// edited, some untracked, and ignored ones, with a remote over a file path. Which commands those are is
// recorded from a cleanup of a third one.

#include "Persistence/CleanupReceiptStore.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Platform/Linux/LinuxVolumeInformation.h"
#include "RawCommand.h"
#include "SampleProject.h"
#include "Services/Cleanup/CleanupCoordinator.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/GitHub/GitHubServicing.h"
#include "Services/Process/ExecutableLocator.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "SideBySide.h"
#include "support/GitRepository.h"
#include "support/RecordingProcessRunner.h"
#include "support/SettableWallClock.h"
#include "support/TemporaryDirectory.h"

#include <filesystem>

namespace {

using namespace cairnfield;

constexpr int directories = 50;
constexpr int filesInEach = 40;
constexpr int rounds = 9;

GitRepository makeProject(const TemporaryDirectory& home) {
    const GitRepository hub = makeHub(home, directories, filesInEach);
    const GitRepository project = hub.cloneTo(home / "project");
    project.git({"config", "user.name", "Robin Example"});
    project.git({"config", "user.email", "robin@example.invalid"});
    project.ignore("node_modules/");
    return project;
}

GitRepository makeWorktree(const GitRepository& project, const std::string& name) {
    const GitRepository tree = project.addWorktree(project.path().parent().appending(name), name);
    for (int number = 0; number < 10; ++number) {
        tree.write("module" + std::to_string(number) + "/file1.cpp", "edited in " + name + "\n");
        tree.write("notes/" + std::to_string(number) + ".txt", "new in " + name + "\n");
    }
    for (int file = 0; file < 300; ++file) tree.write("node_modules/p/" + std::to_string(file) + ".js");
    return tree;
}

std::string recoveryBranchOf(const std::string& name) {
    return "cairnfield/recovery/project/" + name;
}

/// The services as the program composes them.
struct Services {
    explicit Services(const TemporaryDirectory& home) : support(home / "data", home / "config") {}

    ThreadPool pool{2};
    ThreadPool blocking{2};
    Reactor reactor;
    ReactorClock continuousClock{reactor};
    // Late enough that what was made a moment ago does not count as in use.
    SettableWallClock clock{std::chrono::system_clock::now() + std::chrono::hours(1)};
    LinuxChildProcessStarter starter{reactor};
    SystemProcessRunner processes{starter, continuousClock, pool};
    LinuxTreeMeasurer measurer{blocking, clock};
    DirectorySizeScanner scanner{pool, blocking, measurer, clock};
    FileSystemActivityDetector detector{clock};
    LinuxVolumeInformation volumes;
    ApplicationSupport support;
    RecoveryVaultService vault{pool, support, volumes, clock, 1'000'000};
    CleanupReceiptStore receipts{pool, support};
    UnavailableGitHubService github{CairnfieldError(CairnfieldError::GitHubCLINotInstalled{})};

    CleanupPlan planFor(const GitRepository& project, const GitRepository& tree) {
        const GitCommandRunner git = gitThrough(processes);
        GitWorktreeInspector inspector(git, scanner, detector);
        const std::vector<GitWorktreeEntry> entries = runBlocking(inspector.listWorktrees(project.path()));
        const auto entry = std::ranges::find(entries, tree.path(), &GitWorktreeEntry::path);
        if (entry == entries.end()) throw std::runtime_error("a worktree is missing");
        const Worktree reviewed = runBlocking(inspector.inspect(*entry, project.path(), {}));
        CleanupPlan plan = CleanupPlan::makeDefault(reviewed, PlanDefaults{});
        plan.recoveryBranch = recoveryBranchOf(tree.path().lastComponent());
        return plan;
    }

    void cleanUp(const CleanupPlan& plan, ProcessRunning& runner) {
        const GitCommandRunner git = gitThrough(runner);
        GitWorktreeInspector inspector(git, scanner, detector);
        CleanupCoordinator coordinator({pool, blocking, volumes, clock, support.directory()}, git, github,
                                       vault, receipts, inspector);
        const CleanupReceipt receipt = runBlocking(coordinator.execute(plan, nullptr));
        if (receipt.outcome != CleanupOutcome::succeeded)
            throw std::runtime_error("the cleanup failed: " + receipt.errorSummary.value_or(""));
    }

private:
    static GitCommandRunner gitThrough(ProcessRunning& runner) {
        return {runner, ExecutableLocator(std::nullopt, std::nullopt).locateGit()};
    }
};

std::string replaced(std::string text, const std::string& name, const std::string& by) {
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + by.size()))
        text.replace(at, name.size(), by);
    return text;
}

/// The recorded commands as they would have been for another worktree.
std::vector<RawCommand> commandsFor(const std::vector<CommandInvocation>& recorded, const std::string& name,
                                    const std::string& by) {
    std::vector<RawCommand> commands;
    for (CommandInvocation command : recorded) {
        command.currentDirectory = FilePath(replaced(command.currentDirectory->bytes(), name, by));
        for (std::string& argument : command.arguments) argument = replaced(argument, name, by);
        commands.emplace_back(command);
    }
    return commands;
}

void requireGone(const GitRepository& tree) {
    if (std::filesystem::exists(tree.path().bytes())) throw std::runtime_error("a worktree is still there");
}

void cleanupBesideBareLoop(benchmark::State& state) {
    const TemporaryDirectory home;
    const GitRepository project = makeProject(home);
    Services services(home);

    const std::string recordedName = "tree-recorded";
    const GitRepository recordedTree = makeWorktree(project, recordedName);
    RecordingProcessRunner recorder(services.processes);
    services.cleanUp(services.planFor(project, recordedTree), recorder);
    const std::vector<CommandInvocation> recorded = recorder.take();

    std::vector<GitRepository> ourTrees;
    std::vector<GitRepository> bareTrees;
    std::vector<CleanupPlan> plans;
    std::vector<std::vector<RawCommand>> commands;
    for (int round = 0; round < rounds; ++round) {
        ourTrees.push_back(makeWorktree(project, "tree-ours-" + std::to_string(round)));
        plans.push_back(services.planFor(project, ourTrees.back()));
        const std::string name = "tree-bare-" + std::to_string(round);
        bareTrees.push_back(makeWorktree(project, name));
        commands.push_back(commandsFor(recorded, recordedName, name));
    }

    std::size_t oursDone = 0;
    std::size_t bareDone = 0;
    const auto ours = [&] {
        services.cleanUp(plans[oursDone], services.processes);
        requireGone(ourTrees[oursDone++]);
    };
    const auto bare = [&] {
        for (const RawCommand& command : commands[bareDone]) command.run();
        requireGone(bareTrees[bareDone++]);
    };
    measureSideBySide(state, ours, bare);
    state.counters["commands"] = static_cast<double>(recorded.size());
}

}  // namespace

BENCHMARK(cleanupBesideBareLoop)
    ->Name("a whole cleanup of a worktree of 2,000 files, against a bare loop of the same commands")
    ->Iterations(rounds)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
