// The look of a review at a worktree with 100,000 ignored files that are not build output, some of which look
// sensitive, beside `git status` of the same tree. To hold: under 0.3 seconds.

#include "RawCommand.h"
#include "SampleProject.h"
#include "Services/Cleanup/ReviewLook.h"
#include "Services/Process/ExecutableLocator.h"
#include "SideBySide.h"

#include <stdexcept>

namespace {

using namespace cairnfield;

constexpr int trackedDirectories = 20;
constexpr int trackedInEach = 50;
constexpr int directories = 500;
constexpr int filesInEach = 200;
constexpr int rounds = 15;

GitRepository makeWorktree(const TemporaryDirectory& home) {
    const GitRepository project = makeHub(home, trackedDirectories, trackedInEach).cloneTo(home / "project");
    project.ignore("data/");
    const GitRepository tree = project.addWorktree(home / "tree", "tree");
    for (int directory = 0; directory < directories; ++directory) {
        const std::string folder = "data/" + std::to_string(directory % 25) + "/" + std::to_string(directory);
        for (int file = 1; file < filesInEach; ++file)
            tree.write(folder + "/sample-" + std::to_string(file) + ".bin", "x");
        tree.write(folder + "/.env", "SECRET=1\n");
    }
    return tree;
}

void lookBesideStatus(benchmark::State& state) {
    const TemporaryDirectory home;
    const GitRepository tree = makeWorktree(home);
    Worktree reviewed;
    reviewed.path = tree.path();
    reviewed.headSHA = tree.head();
    reviewed.status.ignoredPaths = {"data/"};

    CommandInvocation status;
    status.executableURL = ExecutableLocator(std::nullopt, std::nullopt).locateGit();
    status.arguments = {"status", "--porcelain=v2", "-z", "--untracked-files=all", "--ignored=matching"};
    status.currentDirectory = tree.path();
    const RawCommand bare(status);

    const auto ours = [&] {
        const ReviewLook look = lookForReview(reviewed, 1'000'000, {});
        if (look.nested.failure || look.nested.seen.size() != directories)
            throw std::runtime_error("the look did not see all");
    };
    measureSideBySide(state, ours, [&] { bare.run(); });
}

}  // namespace

BENCHMARK(lookBesideStatus)
    ->Name("the look of a review at 100,000 ignored files, against git status")
    ->Iterations(rounds)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
