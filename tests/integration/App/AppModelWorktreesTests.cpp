// The model's list of worktrees over real repositories: refreshing, sizing with its progress, pins, and what
// happens when the tools or the folders are not there.

#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/App/AppHarness.h"
#include "support/GitRepository.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace cairnfield {
namespace {

struct Worktrees : testing::Test {
    AppHarness app;
    FilePath projects = app.home.makeDirectory("projects");
    GitRepository main = GitRepository::create(projects.appending("alpha"));
    GitRepository feature = addFeature();

    GitRepository addFeature() {
        main.commitFile("readme.txt");
        return main.addWorktree(projects.appending("alpha-feature"), "feature");
    }
    void start() {
        app.settings.monitoringEnabled.set(false);
        app.run(app.model->start());
    }
    [[nodiscard]] const AppState& state() const { return app.model->state(); }
};

TEST_F(Worktrees, AFolderBecomesItsWorktreesWithSizesAndVerdicts) {
    start();
    app.watch(projects);
    ASSERT_EQ(state().worktrees.get().size(), 2U);
    EXPECT_EQ(app.worktreeAt(main.path()).safety, WorktreeSafety::mainWorktree);
    EXPECT_EQ(app.worktreeAt(feature.path()).branch, "feature");
    EXPECT_GT(app.worktreeAt(main.path()).sizeBytes, 0);
    EXPECT_GT(app.worktreeAt(feature.path()).sizeBytes, 0);
    EXPECT_EQ(state().lastWorktreeRefresh.get(), app.wallClock.now());
    EXPECT_EQ(state().worktreeRefreshError.get(), std::nullopt);
    EXPECT_FALSE(state().isRefreshingWorktrees.get());
}

TEST_F(Worktrees, WithoutGitTheRefreshSaysWhyAndKeepsTheList) {
    // Nothing was looked for yet, so there is no git to ask.
    app.run(app.model->refreshWorktrees(true));
    EXPECT_EQ(state().worktreeRefreshError.get(), "Git was not found on this Mac.");
    EXPECT_FALSE(state().isRefreshingWorktrees.get());
}

TEST_F(Worktrees, GitFoundLaterIsUsedFromTheNextLookAtTheIntegrations) {
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->refreshWorktrees(false));
    EXPECT_TRUE(state().worktrees.get().empty());
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(state().gitStatusMessage.get(), std::nullopt);
    EXPECT_TRUE(state().gitPath.get().has_value());
    app.run(app.model->refreshWorktrees(false));
    EXPECT_EQ(state().worktrees.get().size(), 2U);
}

TEST_F(Worktrees, AGitThatIsTooOldIsNamedAndNotShownAsAnEmptyList) {
    const FilePath old = app.home.write("old-git", "#!/bin/sh\necho 'git version 2.35.1'\n");
    std::filesystem::permissions(old.bytes(), std::filesystem::perms::owner_all);
    const std::string words =
        "The git at " + old.bytes() + " is version 2.35, which is too old. Cairnfield needs 2.36 or newer.";
    app.run(app.model->addWatchedFolder(projects));
    app.settings.gitPathOverride.set(old.bytes());
    start();
    EXPECT_EQ(state().gitStatusMessage.get(), words);
    app.run(app.model->refreshWorktrees(false));
    EXPECT_EQ(state().worktreeRefreshError.get(), words);
    EXPECT_FALSE(state().isRefreshingWorktrees.get());

    app.settings.gitPathOverride.set(std::nullopt);
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(state().gitStatusMessage.get(), std::nullopt);
    app.run(app.model->refreshWorktrees(false));
    EXPECT_EQ(state().worktrees.get().size(), 2U);
}

TEST_F(Worktrees, AGitThatIsTooOldIsNamedByARefreshThatComesFirst) {
    app.run(app.model->addWatchedFolder(projects));
    const FilePath old = app.home.write("old-git", "#!/bin/sh\necho 'git version 2.17.0'\n");
    std::filesystem::permissions(old.bytes(), std::filesystem::perms::owner_all);
    app.settings.gitPathOverride.set(old.bytes());
    const TaskHandle<> starting = spawn(app.loop, app.model->start());
    app.run(app.model->refreshWorktrees(false));
    EXPECT_NE(state().worktreeRefreshError.get().value_or("").find("too old"), std::string::npos);
    EXPECT_EQ(state().lastWorktreeRefresh.get(), std::nullopt);
    EXPECT_FALSE(state().isRefreshingWorktrees.get());
    app.waitUntil([&] { return starting.done(); });
}

TEST_F(Worktrees, WithNoEnabledFolderARefreshEmptiesTheList) {
    start();
    app.watch(projects);
    const std::optional<Date> refreshedAt = state().lastWorktreeRefresh.get();
    WatchedFolder folder = state().watchedFolders.get().at(0);
    folder.isEnabled = false;
    app.run(app.model->updateWatchedFolder(folder));
    app.wallClock.advance(std::chrono::hours(1));
    app.run(app.model->refreshWorktrees(true));
    EXPECT_TRUE(state().worktrees.get().empty());
    EXPECT_EQ(state().worktreeRefreshError.get(), std::nullopt);
    EXPECT_EQ(state().lastWorktreeRefresh.get(), refreshedAt);
}

TEST_F(Worktrees, ARefreshDuringARefreshDoesNothing) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    int starts = 0;
    const Subscription subscription =
        state().isRefreshingWorktrees.observe([&] { starts += state().isRefreshingWorktrees.get(); });
    auto both = tasks(app.model->refreshWorktrees(false), app.model->refreshWorktrees(true));
    app.run(whenAll(std::move(both)));
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(state().sizingProgress.get(), std::nullopt);  // the second one's wish for sizes was dropped
    EXPECT_EQ(app.worktreeAt(main.path()).sizeBytes, 0);
}

TEST_F(Worktrees, SizingTellsItsProgressUpToTheTotal) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    std::vector<std::optional<SizingProgress>> seen;
    const Subscription subscription =
        state().sizingProgress.observe([&] { seen.push_back(state().sizingProgress.get()); });
    app.run(app.model->refreshWorktrees(true));
    app.run(app.model->sizingFinished());
    EXPECT_EQ(seen, (std::vector<std::optional<SizingProgress>>{SizingProgress{0, 2}, SizingProgress{1, 2},
                                                                SizingProgress{2, 2}, std::nullopt}));
}

TEST_F(Worktrees, OneThatIsRemovedWhileItIsSizedIsPassedOver) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->refreshWorktrees(false));
    std::filesystem::remove_all(feature.path().bytes());
    std::optional<SizingProgress> last;
    const Subscription subscription = state().sizingProgress.observe([&] {
        if (state().sizingProgress.get()) last = state().sizingProgress.get();
    });
    app.model->startSizing(true);
    app.run(app.model->sizingFinished());
    EXPECT_EQ(last, (SizingProgress{2, 2}));
    EXPECT_EQ(app.worktreeAt(feature.path()).sizeBytes, 0);
    EXPECT_GT(app.worktreeAt(main.path()).sizeBytes, 0);
}

TEST_F(Worktrees, PausingDuringSizingClearsTheProgress) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->refreshWorktrees(false));
    app.model->startSizing(false);
    ASSERT_TRUE(state().sizingProgress.get().has_value());
    app.model->pauseMonitoring();
    EXPECT_EQ(state().sizingProgress.get(), std::nullopt);
}

TEST_F(Worktrees, ASizingThatWasReplacedLeavesTheNewOnesProgressAlone) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->refreshWorktrees(false));
    std::vector<std::int64_t> completed;
    const Subscription subscription = state().sizingProgress.observe([&] {
        if (state().sizingProgress.get()) completed.push_back(state().sizingProgress.get()->completed);
    });
    app.model->startSizing(true);
    app.model->startSizing(true);
    app.run(app.model->sizingFinished());
    EXPECT_EQ(completed, (std::vector<std::int64_t>{0, 0, 1, 2}));
}

TEST_F(Worktrees, NothingIsReclaimableBeforeItIsSized) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    feature.setLastTouched(app.wallClock.now() - std::chrono::hours(24));
    app.run(app.model->refreshWorktrees(false));
    ASSERT_EQ(app.worktreeAt(feature.path()).safety, WorktreeSafety::cleanDisposable);
    EXPECT_EQ(app.model->estimatedReclaimableBytes(), 0);
    app.model->startSizing(false);
    app.run(app.model->sizingFinished());
    EXPECT_EQ(app.model->estimatedReclaimableBytes(), app.worktreeAt(feature.path()).sizeBytes);
    EXPECT_GT(app.model->estimatedReclaimableBytes(), 0);
}

TEST_F(Worktrees, AttentionIsNeededByWorkThatIsNotPreserved) {
    start();
    feature.write("notes.txt");
    feature.setLastTouched(app.wallClock.now() - std::chrono::hours(24));
    app.watch(projects);
    const std::vector<Worktree> found = app.model->worktreesNeedingAttention();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].path, feature.path());
    EXPECT_EQ(found[0].safety, WorktreeSafety::untrackedChanges);
}

TEST_F(Worktrees, APinShowsAtOnceAndOutlivesARefreshAndARestart) {
    start();
    app.watch(projects);
    const WorktreeSafety verdict = app.worktreeAt(feature.path()).safety;
    app.run(app.model->togglePin(app.worktreeAt(feature.path())));
    EXPECT_TRUE(app.worktreeAt(feature.path()).isPinned);
    EXPECT_EQ(app.worktreeAt(feature.path()).safety, verdict);
    app.run(app.model->refreshWorktrees(false));
    EXPECT_TRUE(app.worktreeAt(feature.path()).isPinned);
    EXPECT_FALSE(app.worktreeAt(main.path()).isPinned);
    app.run(app.model->togglePin(app.worktreeAt(feature.path())));
    app.run(app.model->refreshWorktrees(false));
    EXPECT_FALSE(app.worktreeAt(feature.path()).isPinned);
}

TEST_F(Worktrees, APinThatCannotBeStoredShowsUntilTheNextRefresh) {
    start();
    app.watch(projects);
    const FilePath data = app.home.path().appending("data");
    std::filesystem::remove_all(data.bytes());
    app.home.write("data", "in the way");
    app.run(app.model->togglePin(app.worktreeAt(feature.path())));
    EXPECT_TRUE(app.worktreeAt(feature.path()).isPinned);
    app.run(app.model->refreshWorktrees(false));
    EXPECT_FALSE(app.worktreeAt(feature.path()).isPinned);
}

TEST_F(Worktrees, OneSickRepositoryDoesNotKeepTheOthersFromBeingListed) {
    start();
    const GitRepository sick = GitRepository::create(projects.appending("sick"));
    sick.commitFile("a.txt");
    app.home.write("projects/sick/.git/index", "garbage, not an index");
    app.home.write("projects/nowhere/.git", "gitdir: /no/such/place\n");
    app.watch(projects);
    EXPECT_EQ(app.worktreeAt(sick.path()).safety, WorktreeSafety::inaccessible);
    EXPECT_TRUE(app.worktreeAt(sick.path()).inspectionError.has_value());
    EXPECT_EQ(app.worktreeAt(main.path()).safety, WorktreeSafety::mainWorktree);
    EXPECT_EQ(state().worktrees.get().size(), 3U);
}

TEST_F(Worktrees, EndingTheProgramDuringARefreshIsClean) {
    start();
    app.run(app.model->addWatchedFolder(projects));
    app.model->run(app.model->refreshWorktrees(true));
    app.loop.runUntil([&] { return state().isRefreshingWorktrees.get(); });
    app.run(app.model->stop());
    EXPECT_FALSE(state().isRefreshingWorktrees.get());
}

}  // namespace
}  // namespace cairnfield
