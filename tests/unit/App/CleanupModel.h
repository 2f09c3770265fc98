#pragma once
// The real model beside a project with a remote on this disk and a linked worktree with work to lose: a
// changed file, a new one and a secret. Real git and real files; only gh is made up.

#include "Services/Cleanup/PreflightJudgement.h"
#include "Services/Notifications/Notification.h"
#include "Shared/Concurrency/TaskHandle.h"
#include "support/App/AppHarness.h"
#include "support/GitRepository.h"
#include "support/HeldProcessRunner.h"
#include "support/SafeSurroundings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <list>

namespace cairnfield {

struct CleanupModel : testing::Test {
    std::list<ScopedEnvironment> environment = surroundingsAtTheStart();
    HeldProcessRunner commands;
    AppHarness app{{.processRunner = &commands}};
    FilePath projects = app.home.makeDirectory("projects");
    GitRepository alpha = project("alpha");
    GitRepository feature = workIn(alpha, "alpha-feature");

    CleanupModel() {
        commands.next = &app.processRunner;
        signIn(false);
        app.settings.monitoringEnabled.set(false);
    }
    /// Commands that still wait would keep the model from ending.
    ~CleanupModel() override { commands.letGo(); }

    /// A clone of a remote of its own.
    [[nodiscard]] GitRepository project(const std::string& name) const {
        const GitRepository seed = GitRepository::create(app.home / (name + ".seed"));
        seed.write(".gitignore", ".env\n");
        seed.commitFile("kept.txt", "as reviewed\n");
        const GitRepository hub = GitRepository::createBare(app.home / (name + ".git"));
        seed.addRemote("origin", hub.path());
        seed.publish();
        GitRepository clone = hub.cloneTo(projects.appending(name));
        clone.git({"config", "user.name", "Robin Example"});
        clone.git({"config", "user.email", "robin@example.invalid"});
        return clone;
    }
    /// A linked worktree that nobody has touched since yesterday.
    [[nodiscard]] GitRepository cleanWorktree(const GitRepository& of, const std::string& name) const {
        GitRepository worktree = of.addWorktree(projects.appending(name), name);
        worktree.setLastTouched(app.wallClock.now() - std::chrono::hours(24));
        return worktree;
    }
    [[nodiscard]] GitRepository workIn(const GitRepository& of, const std::string& name) const {
        GitRepository worktree = of.addWorktree(projects.appending(name), name);
        worktree.write("kept.txt", "changed\n");
        worktree.write("new.txt", "new\n");
        worktree.write(".env", "SECRET=1\n");
        worktree.setLastTouched(app.wallClock.now() - std::chrono::hours(24));
        return worktree;
    }

    /// What gh says from the next look at the integrations on.
    void signIn(bool isSignedIn) {
        CommandResult result;
        result.exitCode = isSignedIn ? 0 : 1;
        result.standardError = isSignedIn ? "github.com\n  Logged in to github.com as robin\n"
                                          : "You are not logged into any GitHub hosts.\n";
        commands.answer("auth status", std::move(result));
    }

    void start() {
        app.run(app.model->start());
        app.watch(projects);
    }
    [[nodiscard]] const AppState& state() const { return app.model->state(); }
    [[nodiscard]] CleanupPlan plan(const GitRepository& worktree) const {
        return app.model->makePlan(app.worktreeAt(worktree.path()));
    }
    [[nodiscard]] CleanupPreflightReport preflight(const GitRepository& worktree) {
        return app.run(app.model->preflight(app.worktreeAt(worktree.path())));
    }
    /// Fails the test when nothing ran.
    [[nodiscard]] CleanupReceipt clean(const GitRepository& worktree) {
        const std::optional<CleanupReceipt> receipt = app.run(app.model->execute(plan(worktree)));
        EXPECT_TRUE(receipt.has_value());
        return receipt.value_or(CleanupReceipt{});
    }
    /// Begins a cleanup beside the test.
    [[nodiscard]] TaskHandle<std::optional<CleanupReceipt>> begin(const GitRepository& worktree) {
        return spawn(app.loop, app.model->execute(plan(worktree)));
    }
    [[nodiscard]] static bool exists(const GitRepository& worktree) {
        return std::filesystem::exists(worktree.path().bytes());
    }
};

}  // namespace cairnfield
