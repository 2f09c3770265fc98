// The last look before a removal, at a worktree of 50,000 files, beside `git status` of the same tree. To
// hold: under 0.2 seconds, and with it a small part of what git itself needs to remove the tree.

#include "Platform/Linux/LinuxVolumeInformation.h"
#include "RawCommand.h"
#include "SampleProject.h"
#include "Services/Cleanup/LastLook.h"
#include "Services/Process/ExecutableLocator.h"
#include "SideBySide.h"

#include <stdexcept>

namespace {

using namespace cairnfield;

constexpr int directories = 250;
constexpr int trackedInEach = 100;
constexpr int ignoredInEach = 100;
constexpr int rounds = 15;

GitRepository makeWorktree(const TemporaryDirectory& home) {
    const GitRepository project = makeHub(home, directories, trackedInEach).cloneTo(home / "project");
    project.ignore("node_modules/");
    const GitRepository tree = project.addWorktree(home / "tree", "tree");
    for (int directory = 0; directory < directories; ++directory) {
        for (int file = 0; file < ignoredInEach; ++file)
            tree.write("node_modules/p" + std::to_string(directory) + "/" + std::to_string(file) + ".js");
    }
    return tree;
}

void lookBesideStatus(benchmark::State& state) {
    const TemporaryDirectory home;
    const GitRepository tree = makeWorktree(home);
    LastLookQuestion question;
    question.reviewed.path = tree.path();
    question.reviewed.repositoryRoot = home / "project";
    question.reviewed.gitCommonDir = home / "project/.git";
    question.reviewed.headSHA = tree.head();
    question.reviewed.status.ignoredPaths = {"node_modules/"};
    question.head = ExpectedHead::preserved(tree.head());
    question.mustStay = {home / "data"};
    const LinuxVolumeInformation volumes;

    CommandInvocation status;
    status.executableURL = ExecutableLocator(std::nullopt, std::nullopt).locateGit();
    status.arguments = {"status", "--porcelain=v2", "-z", "--untracked-files=all", "--ignored=matching"};
    status.currentDirectory = tree.path();
    const RawCommand bare(status);

    const auto ours = [&] {
        GitAnswers answers;
        const std::optional<RemovalRefusal> refusal = lookBeforeRemoval(question, volumes, answers);
        if (refusal || !answers.takeOpen().empty())
            throw std::runtime_error("it is not an ordinary worktree");
    };
    measureSideBySide(state, ours, [&] { bare.run(); });
}

}  // namespace

BENCHMARK(lookBesideStatus)
    ->Name("the last look at 50,000 files, against git status")
    ->Iterations(rounds)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
