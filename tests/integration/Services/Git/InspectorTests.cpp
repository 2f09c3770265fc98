#include "GitServices.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* hostedURL = "git@github.com:owner/project.git";

class Inspector : public testing::Test {
protected:
    GitRepository localProject() {
        const GitRepository project = GitRepository::create(home / "project");
        project.commitFile("readme.txt");
        return project;
    }

    GitRepository hub() {
        const GitRepository seed = GitRepository::create(home / "seed");
        seed.commitFile("readme.txt");
        seed.git({"clone", "--quiet", "--bare", seed.path().bytes(), (home / "hub.git").bytes()});
        return GitRepository::at(home / "hub.git");
    }

    /// The commands that the last inspection ran, as a person would type them.
    std::vector<std::string> commandLines() {
        std::vector<std::string> lines;
        for (const CommandInvocation& command : services.commands.take()) {
            std::string line;
            for (const std::string& argument : command.arguments)
                line += (line.empty() ? "" : " ") + argument;
            lines.push_back(std::move(line));
        }
        return lines;
    }

    TemporaryDirectory home;
    GitServices services;
};

TEST_F(Inspector, AsksExactlyTheseQuestionsOfABranchWithAnUpstream) {
    const GitRepository feature = hub().cloneTo(home / "project").addWorktree(home / "feature", "feature");
    feature.commitFile("work.txt");
    feature.publish();
    const std::string head = services.inspect(feature).headSHA.value();
    EXPECT_THAT(
        commandLines(),
        ElementsAre("rev-parse --git-common-dir", "rev-parse --absolute-git-dir",
                    "status --porcelain=v2 -z --untracked-files=all --ignored=matching",
                    "submodule status --recursive", "remote", "remote get-url origin",
                    "remote get-url --push origin", "rev-parse --abbrev-ref --symbolic-full-name @{upstream}",
                    "rev-list --left-right --count origin/feature...HEAD",
                    "symbolic-ref --quiet --short refs/remotes/origin/HEAD", "branch -r --contains " + head,
                    "merge-base --is-ancestor " + head + " origin/main",
                    "rev-list --count origin/main..HEAD"));
}

TEST_F(Inspector, AsksExactlyTheseQuestionsWithoutAnyRemote) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    services.inspect(feature);
    EXPECT_THAT(commandLines(),
                ElementsAre("rev-parse --git-common-dir", "rev-parse --absolute-git-dir",
                            "status --porcelain=v2 -z --untracked-files=all --ignored=matching",
                            "submodule status --recursive", "remote",
                            "show-ref --verify --quiet refs/heads/main", "rev-list --count main..HEAD"));
}

TEST_F(Inspector, TriesTheUsualNamesWhereTheRemoteTellsNoDefaultBranch) {
    const GitRepository project = localProject();
    project.git({"branch", "--move", "trunk"});
    project.addRemote("upstream", GitRepository::createBare(home / "empty.git").path());
    const std::string head = services.inspect(project).headSHA.value();
    EXPECT_THAT(commandLines(),
                ElementsAre("rev-parse --git-common-dir", "rev-parse --absolute-git-dir",
                            "status --porcelain=v2 -z --untracked-files=all --ignored=matching",
                            "submodule status --recursive", "remote", "remote get-url upstream",
                            "remote get-url --push upstream",
                            "rev-parse --abbrev-ref --symbolic-full-name @{upstream}",
                            "symbolic-ref --quiet --short refs/remotes/upstream/HEAD",
                            "show-ref --verify --quiet refs/remotes/upstream/main",
                            "show-ref --verify --quiet refs/remotes/upstream/master",
                            "branch -r --contains " + head, "show-ref --verify --quiet refs/heads/main",
                            "show-ref --verify --quiet refs/heads/master"));
}

TEST_F(Inspector, AsksForHeadOnlyWhenTheListGaveNone) {
    const GitRepository unborn = GitRepository::create(home / "unborn");
    const Worktree record = services.inspect(unborn);
    EXPECT_EQ(record.headSHA, std::nullopt);
    EXPECT_EQ(commandLines()[2], "rev-parse HEAD");
}

TEST_F(Inspector, RunsEveryQuestionInTheWorktreeWithoutLocksPromptsOrNetwork) {
    const GitRepository feature = hub().cloneTo(home / "project").addWorktree(home / "feature", "feature");
    services.inspect(feature);
    for (const CommandInvocation& command : services.commands.take()) {
        EXPECT_EQ(command.currentDirectory, feature.path());
        EXPECT_EQ(command.environment.at("GIT_OPTIONAL_LOCKS"), "0");
        EXPECT_EQ(command.environment.at("GIT_TERMINAL_PROMPT"), "0");
        EXPECT_FALSE(command.environment.contains("GIT_ASKPASS"));
        EXPECT_EQ(command.standardInput, std::nullopt);
        const bool isStatus = command.arguments[0] == "status";
        EXPECT_EQ(command.timeout, std::chrono::seconds(isStatus ? 60 : 20)) << command.displayName();
    }
}

TEST_F(Inspector, ListsWithinThirtySeconds) {
    const GitRepository project = localProject();
    waitFor(services.pool, services.inspector.listWorktrees(project.path()));
    const std::vector<CommandInvocation> commands = services.commands.take();
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_THAT(commands[0].arguments, ElementsAre("worktree", "list", "--porcelain", "-z"));
    EXPECT_EQ(commands[0].timeout, std::chrono::seconds(30));
}

TEST_F(Inspector, FailsToListWhatIsNoRepository) {
    home.makeDirectory("plain");
    EXPECT_THROW(waitFor(services.pool, services.inspector.listWorktrees(home / "plain")), CairnfieldError);
}

TEST_F(Inspector, LeavesIgnoredFilesAloneWhenToldSo) {
    const GitRepository project = localProject();
    project.ignore(".env");
    project.write(".env");
    const Worktree record = services.inspect(project, {.includeIgnoredEntries = false});
    EXPECT_THAT(record.ignoredEntries, IsEmpty());
    EXPECT_EQ(commandLines()[2], "status --porcelain=v2 -z --untracked-files=all --ignored=no");
}

TEST_F(Inspector, FillsInWhatTheListAndThePathTell) {
    const GitRepository project = localProject();
    const GitRepository tree = project.addWorktree(home / "here/.claude/worktrees/task", "task");
    const Worktree record = services.inspect(tree, {.pinnedPaths = {tree.path()}});
    EXPECT_EQ(record.path, tree.path());
    EXPECT_EQ(record.repositoryRoot, project.path());
    EXPECT_EQ(record.repositoryName, "project");
    EXPECT_EQ(record.gitCommonDir, project / ".git");
    EXPECT_EQ(record.branch, "task");
    EXPECT_EQ(record.headSHA, project.head());
    EXPECT_EQ(record.source, WorktreeSource::claude);
    EXPECT_TRUE(record.isPinned);
    EXPECT_FALSE(record.isMain);

    const Worktree main = services.inspect(project);
    EXPECT_EQ(main.gitCommonDir, project / ".git");
    EXPECT_EQ(main.source, WorktreeSource::generic);
    EXPECT_FALSE(main.isPinned);
    EXPECT_TRUE(main.isMain);
}

TEST_F(Inspector, InspectsADirectoryWithABlankInItsName) {
    const GitRepository tree = localProject().addWorktree(home / "a blank", "blank");
    tree.write("un tracked.txt");
    const Worktree record = services.inspect(tree);
    EXPECT_EQ(record.inspectionError, std::nullopt);
    EXPECT_THAT(record.status.untrackedPaths, ElementsAre("un tracked.txt"));
}

TEST_F(Inspector, KnowsNoSizeUnlessAskedOrCached) {
    const GitRepository project = localProject();
    services.scanner.sizes[project.path()] = 5'000;
    services.scanner.isEstimated = false;
    Worktree record = services.inspect(project);
    EXPECT_EQ(record.sizeBytes, 0);
    EXPECT_TRUE(record.sizeIsEstimated);
    EXPECT_THAT(services.scanner.walked, IsEmpty());

    services.scanner.cached[project.path()] = 7'000;
    record = services.inspect(project);
    EXPECT_EQ(record.sizeBytes, 7'000);
    EXPECT_TRUE(record.sizeIsEstimated) << "a cached size stays an estimate";

    record = services.inspect(project, {.includeSize = true});
    EXPECT_EQ(record.sizeBytes, 7'000);
    EXPECT_FALSE(record.sizeIsEstimated);

    services.scanner.cached.clear();
    record = services.inspect(project, {.includeSize = true});
    EXPECT_EQ(record.sizeBytes, 5'000);
}

TEST_F(Inspector, GoesOnWhenTheWorktreeCannotBeSized) {
    const Worktree record = services.inspect(localProject(), {.includeSize = true});
    EXPECT_EQ(record.sizeBytes, 0);
    EXPECT_TRUE(record.sizeIsEstimated);
    EXPECT_EQ(rawValue(record.safety), "mainWorktree");
}

TEST_F(Inspector, ComparesAnUnbornBranchWithTheLocalBaseOnly) {
    const GitRepository project = hub().cloneTo(home / "project");
    project.git({"checkout", "--quiet", "--orphan", "fresh"});
    project.git({"rm", "--quiet", "--cached", "-r", "."});
    const Worktree record = services.inspect(project);
    EXPECT_EQ(record.headSHA, std::nullopt);
    EXPECT_EQ(record.tracking.defaultBranch, "main");
    EXPECT_FALSE(record.tracking.headIsRemotelyPreserved);
    EXPECT_EQ(record.tracking.baseRef, "main");
    EXPECT_EQ(record.tracking.uniqueCommitCount, std::nullopt);
}

TEST_F(Inspector, UsesARemoteOfAnotherNameWhenThereIsNoOrigin) {
    const GitRepository project = localProject();
    project.addRemote("upstream", hub().path());
    project.git({"fetch", "--quiet", "upstream"});
    const Worktree record = services.inspect(project);
    EXPECT_EQ(record.tracking.remoteName, "upstream");
    EXPECT_EQ(record.tracking.defaultBranch, "main")
        << "found by its name, since no fetch sets the remote's HEAD";
    EXPECT_EQ(record.tracking.baseRef, "upstream/main");
}

TEST_F(Inspector, PrefersOriginWhereverItStands) {
    const GitRepository project = hub().cloneTo(home / "project");
    project.addRemote("aaa", home / "hub.git");
    const Worktree record = services.inspect(project);
    ASSERT_EQ(record.remotes.size(), 2U);
    EXPECT_EQ(record.remotes[0].name, "aaa");
    EXPECT_EQ(record.tracking.remoteName, "origin");
}

TEST_F(Inspector, DropsTheRemoteFromTheNameOfItsDefaultBranch) {
    const GitRepository project = hub().cloneTo(home / "project");
    ASSERT_EQ(project.git({"symbolic-ref", "--short", "refs/remotes/origin/HEAD"}), "origin/main");
    EXPECT_EQ(services.inspect(project).tracking.defaultBranch, "main");
}

TEST_F(Inspector, DropsTheRemoteWhereverItStandsInThatName) {
    const GitRepository project = hub().cloneTo(home / "project");
    project.git({"update-ref", "refs/remotes/origin/team/origin/main", "HEAD"});
    project.git({"symbolic-ref", "refs/remotes/origin/HEAD", "refs/remotes/origin/team/origin/main"});
    EXPECT_EQ(services.inspect(project).tracking.defaultBranch, "team/main");
}

TEST_F(Inspector, GivesARemoteItsFetchURLToPushTo) {
    const GitRepository project = localProject();
    project.git({"remote", "add", "both", hostedURL});
    project.git({"remote", "add", "two", "https://fetch.example.org/x.git"});
    project.git({"remote", "set-url", "--push", "two", "https://push.example.org/x.git"});
    const GitRemote both{"both", hostedURL, hostedURL};
    const GitRemote two{"two", "https://fetch.example.org/x.git", "https://push.example.org/x.git"};
    EXPECT_THAT(services.inspect(project).remotes, ElementsAre(both, two));
}

TEST_F(Inspector, LeavesTheURLsOfARemoteEmptyThatGitDoesNotTell) {
    const GitRepository project = localProject();
    project.git({"config", "remote.--all.url", "https://git.example.org/x.git"});
    EXPECT_THAT(services.inspect(project).remotes, ElementsAre(GitRemote{"--all", "", ""}));
}

TEST_F(Inspector, CountsWhatIsAheadAndBehindOfTheUpstream) {
    const GitRepository project = hub().cloneTo(home / "project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.publish();
    feature.commitFile("one.txt");
    feature.publish();
    feature.git({"reset", "--quiet", "--hard", "HEAD~1"});
    feature.commitFile("two.txt");
    feature.commitFile("three.txt");
    const RemoteTrackingState tracking = services.inspect(feature).tracking;
    EXPECT_EQ(tracking.ahead, 2);
    EXPECT_EQ(tracking.behind, 1);
}

TEST_F(Inspector, CountsNothingWhereTheCountsCannotBeRead) {
    const GitRepository project = hub().cloneTo(home / "project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.publish();
    feature.commitFile("one.txt");
    for (const char* answer : {"5", "1 2 3", "five six", "1.5 2", ""}) {
        services.commands.instead = {{"rev-list --left-right", {0, answer, ""}}};
        const RemoteTrackingState tracking = services.inspect(feature).tracking;
        EXPECT_EQ(tracking.ahead, 0) << answer;
        EXPECT_EQ(tracking.behind, 0) << answer;
    }
    // Words between two numbers are passed over.
    services.commands.instead = {{"rev-list --left-right", {0, "3 commits 4\n", ""}}};
    EXPECT_EQ(services.inspect(feature).tracking.behind, 3);
    EXPECT_EQ(services.inspect(feature).tracking.ahead, 4);
}

TEST_F(Inspector, KnowsNoUniqueCommitsWhereTheirCountCannotBeRead) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.commitFile("one.txt");
    ASSERT_EQ(services.inspect(feature).tracking.uniqueCommitCount, 1);
    for (const char* answer : {"many", "1 2", "0x1", ""}) {
        services.commands.instead = {{"rev-list --count", {0, answer, ""}}};
        EXPECT_EQ(services.inspect(feature).tracking.uniqueCommitCount, std::nullopt) << answer;
    }
}

TEST_F(Inspector, CountsNothingWithoutAnUpstream) {
    const GitRepository feature = hub().cloneTo(home / "project").addWorktree(home / "feature", "feature");
    feature.commitFile("one.txt");
    const RemoteTrackingState tracking = services.inspect(feature).tracking;
    EXPECT_EQ(tracking.upstreamBranch, std::nullopt);
    EXPECT_EQ(tracking.ahead, 0);
    EXPECT_EQ(tracking.behind, 0);
    EXPECT_EQ(tracking.uniqueCommitCount, 1);
}

TEST_F(Inspector, ListsTopLevelIgnoredEntriesLargestFirst) {
    const GitRepository project = localProject();
    for (const char* pattern : {"x", "node_modules", "notes", "*.log", "private.key"})
        project.ignore(pattern);
    project.write("build/out/x");
    project.write("build/tracked.txt");
    project.write("node_modules/package/index.js");
    project.write("notes/a.txt");
    project.write("a.log");
    project.write("private.key");
    fs::create_symlink("notes", (project / "link.log").bytes());
    services.scanner.sizes = {{project / "build", 9'000'000}, {project / "notes", 8'000'000}};
    services.scanner.cached = {{project / "node_modules", 10'000'000}};

    const Worktree record = services.inspect(project);
    std::vector<std::string> names;
    for (const IgnoredEntry& entry : record.ignoredEntries) names.push_back(entry.name);
    EXPECT_THAT(names, ElementsAre("node_modules", "notes", "a.log", "private.key", "build", "link.log"));

    const IgnoredEntry& modules = record.ignoredEntries[0];
    EXPECT_TRUE(modules.isDirectory);
    EXPECT_EQ(modules.sizeBytes, 10'000'000) << "from the cache alone";
    EXPECT_EQ(rawValue(modules.classification), "rebuildable");
    EXPECT_EQ(modules.relativePath, "node_modules");
    EXPECT_EQ(rawValue(record.ignoredEntries[3].classification), "sensitive");
    EXPECT_EQ(record.ignoredEntries[4].sizeBytes, 0) << "rebuildable, and not in the cache";
    EXPECT_FALSE(record.ignoredEntries[5].isDirectory) << "a link is not what it points to";
    EXPECT_TRUE(record.ignoredEntries[2].modifiedAt.has_value());
    EXPECT_THAT(services.scanner.walked, ElementsAre(project / "notes"));
}

TEST_F(Inspector, SizesAnUnknownDirectoryOnceHoweverManyPathsInItAreIgnored) {
    const GitRepository project = localProject();
    project.ignore("x");
    for (const char* path : {"notes/a/x", "notes/b/x", "notes/x"}) project.write(path);
    project.write("notes/a/kept.txt");
    services.scanner.sizes = {{project / "notes", 8'000'000}};
    const Worktree record = services.inspect(project);
    ASSERT_EQ(record.status.ignoredPaths.size(), 3U);
    ASSERT_EQ(record.ignoredEntries.size(), 1U);
    EXPECT_EQ(record.ignoredEntries[0].name, "notes");
    EXPECT_EQ(record.ignoredEntries[0].sizeBytes, 8'000'000);
    EXPECT_THAT(services.scanner.walked, ElementsAre(project / "notes"));
}

TEST_F(Inspector, CountsAnIgnoredDirectoryThatCannotBeSizedAsNothing) {
    const GitRepository project = localProject();
    project.ignore("notes");
    project.write("notes/a.txt");
    const Worktree record = services.inspect(project);
    ASSERT_EQ(record.ignoredEntries.size(), 1U);
    EXPECT_EQ(record.ignoredEntries[0].sizeBytes, 0);
    EXPECT_EQ(record.inspectionError, std::nullopt);
}

TEST_F(Inspector, SeesAMergeOnlyInTheWorktreeThatMerges) {
    const GitRepository project = localProject();
    const GitRepository merging = project.addWorktree(home / "merging", "merging");
    const GitRepository calm = project.addWorktree(home / "calm", "calm");
    merging.stopIn(GitOperationInProgress::merge);
    EXPECT_EQ(services.inspect(merging).operationInProgress, GitOperationInProgress::merge);
    EXPECT_EQ(services.inspect(calm).operationInProgress, std::nullopt);
}

TEST_F(Inspector, ComesBackSoonWithUnansweredQuestionsWhenItsTaskIsCancelled) {
    const GitRepository project = localProject();
    const std::vector<GitWorktreeEntry> entries =
        waitFor(services.pool, services.inspector.listWorktrees(project.path()));
    const auto handle = spawn(
        services.pool, services.inspector.inspect(entries[0], project.path(), WorktreeInspectionOptions()));
    handle.cancel();
    const Worktree record = waitFor(handle);
    EXPECT_EQ(record.path, project.path());
    EXPECT_TRUE(rawValue(record.safety) == "inaccessible" || rawValue(record.safety) == "mainWorktree");
}

TEST_F(Inspector, ReadsEachMarkOfAnUnfinishedOperation) {
    const FilePath directory = home.makeDirectory("gitdir");
    EXPECT_EQ(operationInProgress(directory), std::nullopt);
    home.write("gitdir/BISECT_LOG");
    EXPECT_EQ(operationInProgress(directory), GitOperationInProgress::bisect);
    home.write("gitdir/REVERT_HEAD");
    EXPECT_EQ(operationInProgress(directory), GitOperationInProgress::revert);
    home.write("gitdir/CHERRY_PICK_HEAD");
    EXPECT_EQ(operationInProgress(directory), GitOperationInProgress::cherryPick);
    home.write("gitdir/MERGE_HEAD");
    EXPECT_EQ(operationInProgress(directory), GitOperationInProgress::merge);
    home.makeDirectory("gitdir/rebase-apply");
    EXPECT_EQ(operationInProgress(directory), GitOperationInProgress::rebase);
    fs::remove((home / "gitdir/rebase-apply").bytes());
    home.makeDirectory("gitdir/rebase-merge");
    EXPECT_EQ(operationInProgress(directory), GitOperationInProgress::rebase);
}

}  // namespace
}  // namespace cairnfield
