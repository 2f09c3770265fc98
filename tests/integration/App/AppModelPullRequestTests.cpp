// Looking up pull requests over a list of worktrees that changes meanwhile.

#include "Shared/Concurrency/TaskHandle.h"
#include "support/App/AppHarness.h"
#include "support/GitRepository.h"
#include "support/HeldProcessRunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace cairnfield {
namespace {

constexpr const char* open = R"([{"number":7,"title":"Work","state":"OPEN","isDraft":false,
    "url":"https://github.com/owner/alpha/pull/7","mergedAt":null,"closedAt":null,
    "headRefName":"feature","baseRefName":"main"}])";

struct PullRequests : testing::Test {
    HeldProcessRunner commands;
    AppHarness app{{.processRunner = &commands}};
    FilePath projects = app.home.makeDirectory("projects");
    GitRepository main = GitRepository::create(projects.appending("alpha"));
    std::optional<GitRepository> feature;

    PullRequests() {
        commands.next = &app.processRunner;
        commands.answer("pr list", {0, open, ""});
        main.commitFile("readme.txt");
        main.addRemote("origin", GitRepository::createBare(app.home.path().appending("origin.git")).path());
        main.publish();
        main.pretendRemoteIsAt("https://github.com/owner/alpha.git");
        feature = main.addWorktree(projects.appending("alpha-feature"), "feature");
        const FilePath hostingTool = app.home.write("gh", "#!/bin/sh\n");
        std::filesystem::permissions(hostingTool.bytes(), std::filesystem::perms::owner_all);
        app.settings.gitHubCLIPathOverride.set(hostingTool.bytes());
        app.settings.monitoringEnabled.set(false);
        app.run(app.model->start());
        app.run(app.model->addWatchedFolder(projects));
        app.run(app.model->refreshWorktrees(false));
    }

    [[nodiscard]] Worktree listed() const { return app.worktreeAt(feature->path()); }
    void waitForHolding() {
        app.waitUntil([&] { return commands.isHolding(); });
    }
    void waitForEnd(const TaskHandle<>& task) {
        app.waitUntil([&] { return task.done(); });
    }
    /// A refresh is under way, and pull requests are asked for about the list as it was before.
    void checkDuringARefresh(const std::function<void()>& change) {
        commands.hold("rev-parse");
        const TaskHandle<> refresh = spawn(app.loop, app.model->refreshWorktrees(false));
        waitForHolding();
        const TaskHandle<> check = spawn(app.loop, app.model->refreshRemoteState());
        app.run(app.model->sizingFinished());  // a turn of the loop: the check has read the list
        change();
        commands.letGo();
        waitForEnd(refresh);
        waitForEnd(check);
    }
};

TEST_F(PullRequests, AreFound) {
    app.run(app.model->refreshRemoteState());
    ASSERT_TRUE(listed().pullRequest.has_value());
    EXPECT_EQ(listed().pullRequest->number, 7);
}

TEST_F(PullRequests, FoundWhileSizesAndPinsAreSetLeaveThemAlone) {
    commands.hold("pr list");
    const TaskHandle<> check = spawn(app.loop, app.model->refreshRemoteState());
    waitForHolding();
    app.model->startSizing(false);
    app.run(app.model->sizingFinished());
    app.run(app.model->togglePin(listed()));
    commands.letGo();
    waitForEnd(check);
    EXPECT_TRUE(listed().pullRequest.has_value());
    EXPECT_GT(listed().sizeBytes, 0);
    EXPECT_GT(app.worktreeAt(main.path()).sizeBytes, 0);
    EXPECT_TRUE(listed().isPinned);
}

TEST_F(PullRequests, DoNotBringBackAWorktreeThatHasGoneMeanwhile) {
    checkDuringARefresh([&] { main.git({"worktree", "remove", feature->path().bytes()}); });
    const std::vector<Worktree>& all = app.model->state().worktrees.get();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].path, main.path());
}

TEST_F(PullRequests, OfAnotherCommitAreNotTaken) {
    std::string head;
    checkDuringARefresh([&] { head = feature->commitFile("more.txt"); });
    EXPECT_EQ(listed().headSHA, head);
    EXPECT_EQ(listed().pullRequest, std::nullopt);
}

TEST_F(PullRequests, OfTheSameCommitAreTakenIntoARefreshedList) {
    checkDuringARefresh([] {});
    EXPECT_TRUE(listed().pullRequest.has_value());
}

TEST_F(PullRequests, ThatNobodyKnowsMoreOfChangeNothing) {
    commands.answer("pr list", {1, "", "no such repository"});
    int changes = 0;
    const Subscription subscription = app.model->state().worktrees.observe([&] { ++changes; });
    app.run(app.model->refreshRemoteState());
    EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace cairnfield
