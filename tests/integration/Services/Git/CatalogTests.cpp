#include "GitServices.h"
#include "support/FakeGitHubService.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <latch>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class Catalog : public testing::Test {
protected:
    GitRepository projectAt(const std::string& relative) {
        const GitRepository project = GitRepository::create(home / relative);
        project.commitFile("readme.txt");
        return project;
    }

    static std::vector<FilePath> pathsOf(const std::vector<Worktree>& worktrees) {
        std::vector<FilePath> paths;
        for (const Worktree& worktree : worktrees) paths.push_back(worktree.path);
        return paths;
    }

    /// Of the commands since the last time, those that begin so.
    std::size_t commandsBeginningWith(const std::vector<std::string>& arguments) {
        std::size_t count = 0;
        for (const CommandInvocation& command : services.commands.take()) {
            if (command.arguments.size() < arguments.size()) continue;
            if (std::equal(arguments.begin(), arguments.end(), command.arguments.begin())) ++count;
        }
        return count;
    }

    std::vector<Worktree> attached(std::vector<Worktree> worktrees) {
        return waitFor(services.pool, services.catalog.attachPullRequests(std::move(worktrees), github));
    }

    TemporaryDirectory home;
    GitServices services;
    FakeGitHubService github;
};

TEST_F(Catalog, StartsNoGitWithoutRoots) {
    EXPECT_THAT(services.refresh({}), IsEmpty());
    EXPECT_THAT(services.commands.take(), IsEmpty());
}

TEST_F(Catalog, ListsARepositoryOnceHoweverManyOfItsWorktreesAreFound) {
    const GitRepository main = projectAt("root/project");
    const GitRepository feature = main.addWorktree(home / "root/feature", "feature");
    const std::vector<Worktree> worktrees = services.refresh({home / "root", home.path()});
    EXPECT_THAT(pathsOf(worktrees), ElementsAre(main.path(), feature.path()));
    EXPECT_EQ(commandsBeginningWith({"worktree", "list"}), 1U);
}

TEST_F(Catalog, AsksTwoQuestionsOfARepositoryAndOneOfItsOtherWorktrees) {
    const GitRepository main = projectAt("root/project");
    main.addWorktree(home / "root/feature", "feature").git({"status"});
    services.refresh({home / "root"});
    const std::vector<CommandInvocation> commands = services.commands.take();
    const std::vector<std::string> common{"rev-parse", "--path-format=absolute", "--git-common-dir"};
    const std::vector<std::string> topLevel{"rev-parse", "--show-toplevel"};
    ASSERT_GT(commands.size(), 4U);
    EXPECT_EQ(commands[0].arguments, common);
    EXPECT_EQ(commands[1].arguments, topLevel);
    EXPECT_EQ(commands[2].arguments, common);
    EXPECT_EQ(commands[3].displayName(), "git worktree list --porcelain");
    EXPECT_EQ(commands[0].timeout, std::chrono::seconds(20));
}

TEST_F(Catalog, FindsTheMainCheckoutOutsideEveryRoot) {
    const GitRepository main = projectAt("elsewhere/project");
    const GitRepository feature = main.addWorktree(home / "root/feature", "feature");
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_THAT(pathsOf(worktrees), ElementsAre(main.path(), feature.path()));
    for (const Worktree& worktree : worktrees) {
        EXPECT_EQ(worktree.repositoryRoot, main.path());
        EXPECT_EQ(worktree.repositoryName, "project");
    }
}

TEST_F(Catalog, FindsWorktreesInHiddenDirectories) {
    const GitRepository main = projectAt("root/project");
    const GitRepository task = main.addWorktree(main / ".claude/worktrees/task", "task");
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_EQ(recordOf(worktrees, task.path()).source, WorktreeSource::claude);
}

TEST_F(Catalog, GathersTheWorktreesOfABareRepository) {
    const GitRepository seed = projectAt("seed");
    seed.git({"clone", "--quiet", "--bare", seed.path().bytes(), (home / "root/project/.git").bytes()});
    const GitRepository feature =
        GitRepository::at(home / "root/project/.git").addWorktree(home / "root/feature", "feature");
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    ASSERT_EQ(worktrees.size(), 2U);
    EXPECT_EQ(rawValue(worktrees[0].safety), "bareRepository");
    EXPECT_EQ(worktrees[1].path, feature.path());
    EXPECT_EQ(worktrees[1].repositoryRoot, worktrees[0].path);
}

TEST_F(Catalog, DropsWhatGitRejects) {
    home.write("root/fake/.git", "not what git writes\n");
    home.makeDirectory("root/empty/.git");
    const GitRepository main = projectAt("root/project");
    EXPECT_THAT(pathsOf(services.refresh({home / "root"})), ElementsAre(main.path()));
}

TEST_F(Catalog, DropsWhatGitRejectsBelowARepositoryThatNobodyWatches) {
    const GitRepository outer = projectAt("outer");
    home.makeDirectory("outer/root/empty/.git");
    home.write("outer/root/half/.git/HEAD", "ref: refs/heads/main\n");
    EXPECT_THAT(services.refresh({home / "outer/root"}), IsEmpty());
    const GitRepository inner = projectAt("outer/root/inner");
    EXPECT_THAT(pathsOf(services.refresh({home / "outer/root"})), ElementsAre(inner.path()));
    EXPECT_THAT(pathsOf(services.refresh({home.path()})), ElementsAre(outer.path()));
}

TEST_F(Catalog, FindsARepositoryWhoseGitDirectoryLiesElsewhere) {
    const GitRepository main = projectAt("elsewhere/project");
    const GitRepository feature = main.addWorktree(home / "elsewhere/feature", "feature");
    home.makeDirectory("root/linked");
    fs::create_directory_symlink((main / ".git").bytes(), (home / "root/linked/.git").bytes());
    EXPECT_THAT(pathsOf(services.refresh({home / "root"})), ElementsAre(main.path(), feature.path()));
    fs::remove((home / "root/linked/.git").bytes());
    home.write("root/linked/.git", contentOf(feature / ".git"));
    EXPECT_THAT(pathsOf(services.refresh({home / "root"})), ElementsAre(main.path(), feature.path()));
}

TEST_F(Catalog, DropsARepositoryWhoseWorktreesCannotBeListed) {
    const GitRepository main = projectAt("root/project");
    ASSERT_THAT(pathsOf(services.refresh({home / "root"})), ElementsAre(main.path()));
    services.commands.instead = {{"worktree list", {128, "", "fatal: broken"}}};
    EXPECT_THAT(services.refresh({home / "root"}), IsEmpty());
}

TEST_F(Catalog, TakesOneRepositoryReachedByALinkAndByItsPathForOne) {
    const GitRepository main = projectAt("real/project");
    fs::create_directory_symlink((home / "real").bytes(), (home / "link").bytes());
    EXPECT_THAT(pathsOf(services.refresh({home / "link", home / "real"})), ElementsAre(main.path()));
}

TEST_F(Catalog, SortsByNameThenMainThenSize) {
    const GitRepository first = projectAt("a/project");
    const GitRepository second = projectAt("b/project");
    const GitRepository upper = projectAt("Zebra");
    const GitRepository small = first.addWorktree(home / "w/small", "small");
    const GitRepository large = first.addWorktree(home / "w/large", "large");
    services.scanner.cached = {{first.path(), 1}, {second.path(), 2}, {small.path(), 3}, {large.path(), 4}};
    EXPECT_THAT(pathsOf(services.refresh({home.path()})),
                ElementsAre(upper.path(), second.path(), first.path(), large.path(), small.path()))
        << "capitals come first in the order of bytes";
}

TEST_F(Catalog, PassesOptionsOnToEveryInspection) {
    const GitRepository main = projectAt("project");
    const GitRepository feature = main.addWorktree(home / "feature", "feature");
    services.scanner.sizes = {{main.path(), 10}, {feature.path(), 20}};
    const std::vector<Worktree> worktrees =
        services.refresh({home.path()}, {.includeSizes = true, .pinnedPaths = {feature.path()}});
    EXPECT_EQ(recordOf(worktrees, main.path()).sizeBytes, 10);
    EXPECT_EQ(recordOf(worktrees, feature.path()).sizeBytes, 20);
    EXPECT_FALSE(recordOf(worktrees, main.path()).isPinned);
    EXPECT_TRUE(recordOf(worktrees, feature.path()).isPinned);
    EXPECT_THAT(services.refresh({home.path()}, {.maxDepth = 0}), IsEmpty());
}

TEST_F(Catalog, ForgetsAWorktreeThatWasRemoved) {
    const GitRepository main = projectAt("project");
    const GitRepository feature = main.addWorktree(home / "feature", "feature");
    EXPECT_EQ(services.refresh({home.path()}).size(), 2U);
    main.git({"worktree", "remove", feature.path().bytes()});
    EXPECT_THAT(pathsOf(services.refresh({home.path()})), ElementsAre(main.path()));
}

/// Stands before the inspector and cancels the refresh as soon as the first repository is listed.
class CancellingInspector final : public WorktreeInspecting {
public:
    CancellingInspector(WorktreeInspecting& inspector, TaskHandle<std::vector<Worktree>>& refresh)
        : inspector_(inspector), refresh_(refresh) {}

    Task<std::vector<GitWorktreeEntry>> listWorktrees(FilePath repositoryRoot) override {
        std::vector<GitWorktreeEntry> entries = co_await inspector_.listWorktrees(std::move(repositoryRoot));
        refresh_.cancel();
        co_return entries;
    }
    Task<Worktree> inspect(GitWorktreeEntry entry, FilePath repositoryRoot,
                           WorktreeInspectionOptions options) override {
        return inspector_.inspect(std::move(entry), std::move(repositoryRoot), std::move(options));
    }

private:
    WorktreeInspecting& inspector_;
    TaskHandle<std::vector<Worktree>>& refresh_;
};

TEST_F(Catalog, FinishesTheRepositoryAtHandWhenCancelledAndGivesWhatThereIs) {
    const GitRepository main = projectAt("one");
    const GitRepository feature = main.addWorktree(home / "one-feature", "feature");
    projectAt("two");
    ThreadPool pool(1);
    ThreadPool blocking(1);
    TaskHandle<std::vector<Worktree>> refresh;
    WorktreeCatalog catalog(pool, std::make_unique<RepositoryDiscoveryService>(blocking),
                            std::make_unique<CancellingInspector>(services.inspector, refresh), services.git);
    const std::vector<FilePath> roots{main.path(), home / "two"};
    std::latch handleIsSet(1);
    const auto refreshed = [](WorktreeCatalog& asked, std::vector<FilePath> under,
                              std::latch& start) -> Task<std::vector<Worktree>> {
        start.wait();
        std::vector<Worktree> worktrees =
            co_await asked.refresh(std::move(under), WorktreeCatalog::RefreshOptions());
        co_return worktrees;
    };
    ThreadPool callers(1);
    refresh = spawn(callers, refreshed(catalog, roots, handleIsSet));
    handleIsSet.count_down();
    EXPECT_THAT(pathsOf(waitFor(refresh)), ElementsAre(main.path(), feature.path()));
}

TEST_F(Catalog, LetsASecondRefreshWaitForTheFirst) {
    const GitRepository main = projectAt("project");
    const std::vector<FilePath> roots{home.path()};
    const auto first = spawn(services.pool, services.catalog.refresh(roots, {}));
    const auto second = spawn(services.pool, services.catalog.refresh(roots, {}));
    EXPECT_THAT(pathsOf(waitFor(first)), ElementsAre(main.path()));
    EXPECT_THAT(pathsOf(waitFor(second)), ElementsAre(main.path()));
    const std::vector<CommandInvocation> commands = services.commands.take();
    ASSERT_EQ(commands.size() % 2, 0U);
    for (std::size_t at = 0; at < commands.size() / 2; ++at) {
        EXPECT_EQ(commands[at].arguments, commands[at + commands.size() / 2].arguments) << at;
    }
}

// Pull requests. None of these worktrees need exist.

Worktree publishedWorktree() {
    Worktree worktree;
    worktree.path = FilePath("/projects/app-feature");
    worktree.branch = "feature";
    worktree.remotes = {{"origin", "", "git@github.com:owner/app.git"},
                        {"fork", "", "https://github.example.org/me/app.git"}};
    worktree.tracking.remoteName = "fork";
    worktree.tracking.headIsRemotelyPreserved = true;
    worktree.safety = WorktreeSafety::remotelyPreserved;
    return worktree;
}

TEST_F(Catalog, AsksForThePullRequestOfTheBranchAtTheTrackedRemote) {
    github.pullRequests["feature"] = PullRequestInfo{.number = 12};
    const std::vector<Worktree> worktrees = attached({publishedWorktree()});
    EXPECT_THAT(github.questions, ElementsAre(FakeGitHubService::Question{
                                      "feature", FilePath("/projects/app-feature"), "github.example.org"}));
    EXPECT_EQ(worktrees[0].pullRequest->number, 12);
    EXPECT_EQ(rawValue(worktrees[0].safety), "openPullRequest");
}

TEST_F(Catalog, AsksTheFirstRemoteWhenTheTrackedOneIsNotThere) {
    Worktree worktree = publishedWorktree();
    worktree.tracking.remoteName = "gone";
    attached({worktree});
    ASSERT_EQ(github.questions.size(), 1U);
    EXPECT_EQ(github.questions[0].host, "github.com");
}

TEST_F(Catalog, AsksNothingOfWorktreesThatCanHaveNoPullRequest) {
    std::vector<Worktree> worktrees(5, publishedWorktree());
    worktrees[0].isMain = true;
    worktrees[1].isBare = true;
    worktrees[2].branch.reset();
    worktrees[3].remotes.clear();
    worktrees[4].remotes = {{"fork", "", "https://git.example.org/me/app.git"}};
    EXPECT_EQ(attached(worktrees), worktrees);
    EXPECT_THAT(github.questions, IsEmpty());
}

TEST_F(Catalog, ClearsAPullRequestThatIsNoMore) {
    Worktree worktree = publishedWorktree();
    worktree.pullRequest = PullRequestInfo{.number = 12};
    worktree.safety = WorktreeSafety::openPullRequest;
    const std::vector<Worktree> worktrees = attached({worktree});
    EXPECT_EQ(worktrees[0].pullRequest, std::nullopt);
    EXPECT_EQ(rawValue(worktrees[0].safety), "remotelyPreserved");
}

TEST_F(Catalog, LeavesAWorktreeAsItWasWhenTheQuestionFails) {
    github.failure = CairnfieldError(CairnfieldError::Offline{});
    Worktree worktree = publishedWorktree();
    worktree.pullRequest = PullRequestInfo{.number = 12};
    worktree.safety = WorktreeSafety::openPullRequest;
    EXPECT_THAT(attached({worktree}), ElementsAre(worktree));
}

}  // namespace
}  // namespace cairnfield
