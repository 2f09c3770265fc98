// The preflight on real repositories: one sentence for whatever forbids a cleanup, in order.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Preflight : public Cleanup {
protected:
    std::vector<std::string> failuresOf(const Worktree& worktree, bool requiresRemote = false) {
        const CleanupPreflightReport report = preflight(worktree, requiresRemote);
        if (!report.passed) {
            EXPECT_EQ(report, CleanupPreflightReport::failed(report.failures.front()));
        }
        return report.failures;
    }
};

TEST_F(Preflight, PassesACleanWorktreeAndChangesNothing) {
    const CleanupPreflightReport report = preflight(review());
    EXPECT_TRUE(report.passed);
    EXPECT_THAT(report.failures, IsEmpty());
    EXPECT_THAT(report.warnings, IsEmpty());
    EXPECT_FALSE(report.remoteIsWritable);
    EXPECT_EQ(report.resolvedBaseBranch, "main");
    ASSERT_TRUE(report.fingerprint);
    EXPECT_EQ(report.fingerprint->value.size(), 64U);
    EXPECT_EQ(preflight(review()), report);
}

TEST_F(Preflight, NamesTheMissingPathBeforeEverythingElse) {
    Worktree reviewed = review(project);
    reviewed.isPinned = true;
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("This is the repository's main worktree."));
    std::filesystem::rename(project.path().bytes(), (home / "away").bytes());
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("The worktree path no longer exists."));
}

TEST_F(Preflight, NamesThePinBeforeTheLock) {
    feature.lock("mine");
    Worktree reviewed = review();
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("The worktree is locked: mine"));
    reviewed.isPinned = true;
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("This worktree is pinned in Cairnfield."));
}

TEST_F(Preflight, NamesALockWithoutAReason) {
    const Worktree reviewed = review();
    feature.lock();
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("The worktree is locked."));
}

TEST_F(Preflight, NoticesThatGitDoesNotListIt) {
    Worktree reviewed = review();
    reviewed.path = home / "seed";
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("Git no longer lists this worktree."));
    commands.answer("worktree list", CommandResult{128, {}, "bad"});
    EXPECT_THAT(failuresOf(review()), ElementsAre("Git no longer lists this worktree."));
}

TEST_F(Preflight, NoticesAHeadThatMoved) {
    const Worktree reviewed = review();
    feature.commitFile("later.txt");
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("HEAD moved since the worktree was reviewed."));
}

TEST_F(Preflight, NoticesAnotherBranchAtTheSameCommit) {
    const Worktree reviewed = review();
    feature.git({"switch", "--quiet", "--create", "another"});
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("The branch changed since the worktree was reviewed."));
}

TEST_F(Preflight, TakesADetachedHeadForWhatItWas) {
    const GitRepository detached = project.addDetachedWorktree(home / "detached");
    EXPECT_TRUE(preflight(review(detached)).passed);
}

TEST_F(Preflight, NamesActivityBeforeConflicts) {
    feature.stopAtConflict();
    const Worktree reviewed = review();
    EXPECT_THAT(failuresOf(reviewed), ElementsAre("The worktree has unresolved merge conflicts."));
    services.clock.ahead = std::chrono::seconds(0);
    const std::vector<std::string> failures = failuresOf(reviewed);
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures, std::vector{review().activityReason.value()});
}

TEST_F(Preflight, NamesTheOperationInProgress) {
    feature.stopIn(GitOperationInProgress::bisect);
    EXPECT_THAT(failuresOf(review()), ElementsAre("A bisect is in progress."));
}

TEST_F(Preflight, WarnsOfSubmodulesAndSecretsOnceEach) {
    const GitRepository source = GitRepository::at(home / "seed");
    feature.addSubmodule(source, "one");
    feature.addSubmodule(source, "two");
    GitRepository::at(feature / "one").commitFile("inside.txt");
    GitRepository::at(feature / "two").commitFile("inside.txt");
    feature.write(".env");
    feature.write("other.key");
    EXPECT_THAT(preflight(review()).warnings,
                ElementsAre("A submodule has uncommitted state; it will not be preserved.",
                            "Ignored files that look sensitive were found. Review them before continuing."));
}

TEST_F(Preflight, AsksTheRemoteOnlyWhenOneIsNeeded) {
    Worktree reviewed = review();
    EXPECT_TRUE(preflight(reviewed, true).remoteIsWritable);
    std::filesystem::rename(hub.path().bytes(), (home / "gone.git").bytes());
    EXPECT_TRUE(preflight(reviewed, false).passed);
    EXPECT_THAT(failuresOf(reviewed, true), ElementsAre("The remote origin could not be reached."));
    reviewed.remotes.clear();
    reviewed.tracking.remoteName = std::nullopt;
    EXPECT_THAT(failuresOf(reviewed, true),
                ElementsAre("This repository has no remote to preserve work to."));
    EXPECT_TRUE(preflight(reviewed, false).passed);
}

TEST_F(Preflight, FindsARemoteWithoutBranchesUnreachable) {
    hub.git({"update-ref", "-d", "refs/heads/main"});
    EXPECT_THAT(failuresOf(review(), true), ElementsAre("The remote origin could not be reached."));
}

TEST_F(Preflight, AsksTheHostingServiceForAnUnknownBaseBranch) {
    Worktree reviewed = review();
    reviewed.tracking.defaultBranch = std::nullopt;
    const std::string undetermined = "The base branch could not be determined. Choose one manually.";
    EXPECT_THAT(failuresOf(reviewed, true), ElementsAre(undetermined)) << "a path has no host";
    EXPECT_EQ(preflight(reviewed, false).resolvedBaseBranch, std::nullopt);
    reviewed.remotes.front().pushURL = "git@code.example:robin/project.git";
    EXPECT_THAT(failuresOf(reviewed, true), ElementsAre(undetermined));
    github.answeredDefaultBranch = "trunk";
    EXPECT_EQ(preflight(reviewed, true).resolvedBaseBranch, "trunk");
    EXPECT_THAT(github.askedHosts, testing::Each(std::optional<std::string>("code.example")));
}

TEST_F(Preflight, FingerprintsTheNamesOfIgnoredFilesAndNotTheirSizes) {
    feature.write(".env", "one\n");
    const auto fingerprint = preflight(review()).fingerprint;
    feature.write(".env", "one and much more\n");
    EXPECT_EQ(preflight(review()).fingerprint, fingerprint);
    std::filesystem::rename((feature / ".env").bytes(), (feature / "my.key").bytes());
    EXPECT_NE(preflight(review()).fingerprint, fingerprint);
}

TEST_F(Preflight, FingerprintsWithoutAStatusToo) {
    feature.write("kept.txt", "changed\n");
    const auto fingerprint = preflight(review()).fingerprint;
    commands.after("worktree list", [this] {
        commands.after("status", [this] {  // the inspection's; the next one is the fingerprint's
            commands.fail("status", std::make_exception_ptr(
                                        CairnfieldError(CairnfieldError::CommandTimedOut{"git status", 30})));
        });
    });
    const CleanupPreflightReport report = preflight(review());
    EXPECT_TRUE(report.passed);
    EXPECT_EQ(report.fingerprint->value.size(), 64U);
    EXPECT_NE(report.fingerprint, fingerprint);
}

}  // namespace
}  // namespace cairnfield
