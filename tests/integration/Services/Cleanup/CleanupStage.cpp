#include "integration/Services/Cleanup/CleanupStage.h"

#include <sys/stat.h>

#include <filesystem>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::int64_t measuredSize = 123'456;

GitRepository clonedProject(const TemporaryDirectory& home, const GitRepository& hub) {
    const GitRepository seed = GitRepository::create(home / "seed");
    seed.write(".gitignore", ".env\n*.key\nnode_modules/\nlogs/\n");
    seed.write("kept.txt", "as reviewed\n");
    seed.write("second.txt", "as reviewed\n");
    seed.commit("Begin");
    seed.addRemote("origin", hub.path());
    seed.publish();
    const GitRepository project = hub.cloneTo(home / "project");
    project.git({"config", "core.fsync", "none"});
    hub.git({"config", "core.fsync", "none"});
    project.git({"config", "user.name", "Robin Example"});
    project.git({"config", "user.email", "robin@example.invalid"});
    return project;
}

}  // namespace

Cleanup::Cleanup()
    : hub(GitRepository::createBare(home / "hub.git")),
      project(clonedProject(home, hub)),
      feature(project.addWorktree(home / "feature", "feature")) {
    volume.answer.availableCapacity = 1'000'000'000;
}

Worktree Cleanup::review(const GitRepository& worktree) {
    Worktree record = services.inspect(worktree);
    record.sizeBytes = measuredSize;
    services.commands.take();
    return record;
}

CleanupPlan Cleanup::plan(const Worktree& reviewed) {
    PlanDefaults defaults;
    defaults.preserveSmallLocalFiles = true;
    defaults.maxVaultFileBytes = 1'000'000;
    defaults.retentionDays = 90;
    CleanupPlan made = CleanupPlan::makeDefault(reviewed, defaults);
    made.recoveryBranch = branch;
    return made;
}

CleanupReceipt Cleanup::execute(const CleanupPlan& plan) {
    const auto progress = [this](CleanupProgress report) {
        const std::lock_guard lock(mutex_);
        reports_.push_back(std::move(report));
    };
    CleanupReceipt receipt = waitFor(services.pool, coordinator.execute(plan, progress));
    EXPECT_TRUE(commands.isDone()) << "something that the test had set up never happened";
    return receipt;
}

std::vector<std::string> Cleanup::commandLines() {
    std::vector<std::string> lines;
    for (const CommandInvocation& command : services.commands.take()) {
        std::string line = command.currentDirectory->lastComponent() + ":";
        for (const std::string& argument : command.arguments) line += " " + argument;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> Cleanup::stages() {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> words;
    for (const CleanupProgress& report : std::exchange(reports_, {}))
        words.push_back(std::string(rawValue(report.stage)) + (report.detail ? ": " + *report.detail : ""));
    return words;
}

bool Cleanup::isThere(const FilePath& path) const {
    struct stat status{};
    return lstat(path.c_str(), &status) == 0;
}

std::string Cleanup::onRemote(const std::string& path, const std::string& commit) const {
    return hub.git({"show", commit + ":" + path});
}

bool Cleanup::remoteHasBranch(const std::string& name) const {
    return hub.tryGit({"show-ref", "--verify", "--quiet", "refs/heads/" + name});
}

void Cleanup::hook(const std::string& name, const std::string& script) const {
    project.write(".git/hooks/" + name, "#!/bin/sh\n" + script + "\n");
    std::filesystem::permissions((project / (".git/hooks/" + name)).bytes(), std::filesystem::perms(0755));
}

void Cleanup::expectIntact(const CleanupReceipt& receipt) const {
    EXPECT_TRUE(isThere(feature.path()));
    EXPECT_TRUE(isThere(feature / ".git"));
    EXPECT_FALSE(receipt.removalSucceeded);
    EXPECT_EQ(receipt.reclaimedBytes, 0);
    EXPECT_EQ(receipt.finalStage, CleanupStage::failed);
    EXPECT_NE(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_TRUE(receipt.errorSummary.has_value());
}

}  // namespace cairnfield
