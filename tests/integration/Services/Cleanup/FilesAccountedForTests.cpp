// Files that git overlooks, for whatever reason: none of them leaves with a worktree unless the person was
// shown it, or unless it comes back by itself.

#include "integration/Services/Cleanup/LastLookStage.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* lastStatus = "status --porcelain=v2 -z --untracked-files=all --ignored=no";

class FilesAccountedFor : public LastLook {
protected:
    static std::string overlooked(const std::string& path) {
        return path + " is in no commit and was not in the review, and Git overlooks it.";
    }
    static std::string leftOut(const std::string& path) {
        return path + " was untracked at the review and is in no commit, and Git overlooks it by now.";
    }
    /// What a review saw below the top that looked sensitive.
    static inline const std::vector<IgnoredEntry> nothing;
    /// As in a repository that was copied from a disk that does not tell cases apart.
    void ignoreCase() const { project.git({"config", "core.ignoreCase", "true"}); }
    /// The default plan without the untracked files.
    CleanupPlan planWithoutUntracked() {
        CleanupPlan made = plan();
        made.untrackedPathsToCommit.clear();
        return made;
    }
};

TEST_F(FilesAccountedFor, AreNotThoseThatGitTakesForTrackedOnesOfAnotherCase) {
    ignoreCase();
    feature.write("KEPT.txt", "mine\n");
    const Worktree reviewed = review();
    ASSERT_TRUE(reviewed.status.isClean()) << "git sees it";
    EXPECT_EQ(look(reviewed), overlooked("KEPT.txt"));
    const CleanupReceipt receipt = execute(plan(reviewed));
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(overlooked("KEPT.txt")));
    EXPECT_EQ(contentOf(feature / "KEPT.txt"), "mine\n");
    expectIntact(receipt);
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreNotThoseOfAnotherCaseBesideWorkToPreserve) {
    ignoreCase();
    feature.write("KEPT.txt", "mine\n");
    feature.write("second.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(overlooked("KEPT.txt")));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_FALSE(remoteHasBranch());
    EXPECT_EQ(contentOf(feature / "KEPT.txt"), "mine\n");
    expectIntact(receipt);
}

TEST_F(FilesAccountedFor, AreNotThoseOfAnotherCaseInFoldersNamedLikeBuildOutput) {
    feature.write("build/tool.js");
    feature.commit("A tool");
    ignoreCase();
    feature.write("Build/Tool.js", "mine\n");
    EXPECT_EQ(feature.git({"status", "--porcelain"}), "");
    EXPECT_EQ(look(), overlooked("Build/Tool.js"));
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreNotThoseThatHideBehindASkippedEntryOfAnotherCase) {
    ignoreCase();
    feature.git({"update-index", "--skip-worktree", "kept.txt"});
    fs::rename((feature / "kept.txt").bytes(), (feature / "KEPT.txt").bytes());
    feature.write("KEPT.txt", "mine\n");
    EXPECT_EQ(look(), overlooked("KEPT.txt"));
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreTrackedOnesThatTheDiskShowsInAnotherCase) {
    ignoreCase();
    // Two names lead to one file, as they do on a disk that does not tell cases apart.
    fs::create_hard_link((feature / "kept.txt").bytes(), (feature / "KEPT.txt").bytes());
    EXPECT_EQ(look(), "");
}

TEST_F(FilesAccountedFor, AreNotThoseThatDifferFromATrackedNameInItsNormalisation) {
    feature.commitFile("caf\xc3\xa9.txt");
    project.git({"config", "core.precomposeUnicode", "true"});
    const Worktree reviewed = review();
    const std::string decomposed = "cafe\xcc\x81.txt";
    project.ignore(decomposed);
    feature.write(decomposed, "mine\n");
    EXPECT_EQ(look(reviewed), overlooked(decomposed));
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreNotThoseThatWereLeftOutAndAreIgnoredNow) {
    feature.write("left-out.txt", "mine\n");
    const CleanupPlan made = planWithoutUntracked();
    ASSERT_FALSE(made.requiresPreservation());
    project.ignore("left-out.txt");
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(leftOut("left-out.txt")));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(contentOf(feature / "left-out.txt"), "mine\n");
    expectIntact(receipt);
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreNotThoseThatWereLeftOutAndAreIgnoredAfterTheCommit) {
    feature.write("kept.txt", "changed\n");
    feature.write("build/left-out.js", "mine\n");
    const CleanupPlan made = planWithoutUntracked();
    commands.after("commit", [this] { project.ignore("build/"); });
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(leftOut("build/left-out.js")));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_EQ(contentOf(feature / "build/left-out.js"), "mine\n");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    expectIntact(receipt);
}

TEST_F(FilesAccountedFor, AreNotThoseThatAreIgnoredOnceGitHasReportedThem) {
    feature.write("kept.txt", "changed\n");
    commands.before("switch --create", [this] { feature.write("late.txt", "mine\n"); });
    commands.after(lastStatus, [this] { project.ignore("late.txt"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr("late.txt is in no commit, and Git overlooks it by now."));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_EQ(contentOf(feature / "late.txt"), "mine\n");
    expectIntact(receipt);
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreThoseThatWereCommittedAndAreIgnoredAfterwards) {
    feature.write("new.txt", "mine\n");
    commands.after("commit", [this] { project.ignore("new.txt"); });
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("new.txt"), "mine");
    EXPECT_FALSE(isThere(feature.path()));
}

TEST_F(FilesAccountedFor, AreNotIgnoredOnesThatAppearInAWorktreeThatNeedsNoPreservation) {
    const CleanupPlan made = plan();
    ASSERT_FALSE(made.requiresPreservation());
    feature.write("logs/today.log", "mine\n");
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(overlooked("logs/today.log")));
    EXPECT_EQ(contentOf(feature / "logs/today.log"), "mine\n");
    expectIntact(receipt);
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreNotIgnoredOnesThatAppearAfterTheProof) {
    feature.write("kept.txt", "changed\n");
    commands.before(lastStatus, [this] { feature.write("logs/today.log", "mine\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(overlooked("logs/today.log")));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    expectIntact(receipt);
}

TEST_F(FilesAccountedFor, AreNotIgnoredOnesThatAppearBesideIgnoredOnesOfTheReview) {
    project.ignore("*.local");
    feature.write("src/one.local");
    const Worktree reviewed = review();
    EXPECT_EQ(look(reviewed), "");
    feature.write("src/two.local", "mine\n");
    EXPECT_EQ(look(reviewed), overlooked("src/two.local"));
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreThoseThatAppearInAnIgnoredDirectoryOfTheReview) {
    feature.write("logs/monday.log");
    const Worktree reviewed = review();
    feature.write("logs/tuesday/noon.log");
    EXPECT_EQ(look(reviewed), "");
}

TEST_F(FilesAccountedFor, AreThoseOfBuildOutputThatAppears) {
    project.ignore("*.eslintcache");
    project.ignore("__pycache__");
    const CleanupPlan made = plan();
    feature.write("node_modules/package/test.pem");
    feature.write("src/__pycache__/module.pyc");
    feature.write(".eslintcache");
    EXPECT_EQ(execute(made).errorSummary, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
}

TEST_F(FilesAccountedFor, AreNotBuildOutputInsideOfSomethingSensitive) {
    const Worktree reviewed = review();
    project.ignore("secrets/");
    feature.write("secrets/build/token");
    EXPECT_EQ(look(reviewed), "secrets/build/token looks sensitive and appeared after the review.");
}

TEST_F(FilesAccountedFor, AreNotSensitiveOnesThatAppearAmongSourcesInAFolderNamedLikeBuildOutput) {
    feature.write("build/tool.js");
    feature.commit("A tool");
    const Worktree reviewed = review();
    feature.write("build/.env", "SECRET=1\n");
    EXPECT_EQ(look(reviewed), "build/.env looks sensitive and appeared after the review.");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreNotSensitiveOnesThatAppearBelowIgnoredDirectoriesOfTheReview) {
    feature.write("logs/deep/old.pem", "seen\n");
    CleanupPlan made = plan();
    made.nested = lookForNestedSensitiveFiles(made.worktree, 1'000'000, {});
    ASSERT_EQ(made.nested.seen.size(), 1U);
    EXPECT_EQ(look(made.worktree, {}, made.nested.seen), "");
    EXPECT_EQ(look(made.worktree), "") << "before a review has looked";
    feature.write("logs/deep/new.pem", "mine\n");
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr("logs/deep/new.pem looks sensitive and appeared after the review."));
    EXPECT_EQ(contentOf(feature / "logs/deep/new.pem"), "mine\n");
    expectIntact(receipt);
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreSensitiveOnesBelowTheTopThatTheReviewShowed) {
    project.ignore("secrets/");
    feature.write("logs/deep/old.pem");
    feature.write("secrets/token");
    feature.write("packages/api/.env");
    CleanupPlan made = plan();
    made.nested = lookForNestedSensitiveFiles(made.worktree, 1'000'000, {});
    ASSERT_EQ(made.nested.seen.size(), 3U);
    EXPECT_EQ(execute(made).errorSummary, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
}

TEST_F(FilesAccountedFor, AreSensitiveOnesThatAppearInBuildOutput) {
    feature.write("node_modules/package/index.js");
    feature.write("logs/node_modules/index.js");
    const Worktree reviewed = review();
    feature.write("node_modules/package/test/server.pem");
    feature.write("logs/node_modules/test.key");
    EXPECT_EQ(look(reviewed, {}, nothing), "");
}

TEST_F(FilesAccountedFor, AreSensitiveOnesInIgnoredDirectoriesThatAreTrackedByNow) {
    feature.write("logs/today.log");
    const Worktree reviewed = review();
    feature.write("logs/new.pem");
    EXPECT_EQ(look(reviewed, {}, nothing), "logs/new.pem looks sensitive and appeared after the review.");
    feature.git({"add", "--force", "logs/new.pem"});
    EXPECT_EQ(look(reviewed, {}, nothing), "") << "left to git";
    EXPECT_FALSE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, HaveContentBelowTheTopToo) {
    feature.write("logs/today.log");
    const Worktree reviewed = review();
    fs::create_directories((feature / "logs/secrets").bytes());
    ASSERT_EQ(mkfifo((feature / "logs/late.key").c_str(), 0600), 0);
    EXPECT_EQ(look(reviewed, {}, nothing), "");
}

TEST_F(FilesAccountedFor, AreNotLinksThatAppear) {
    const Worktree reviewed = review();
    fs::create_directories((feature / "logs").bytes());
    fs::create_symlink("/nowhere", (feature / "logs/link").bytes());
    EXPECT_EQ(look(reviewed), overlooked("logs/link"));
}

TEST_F(FilesAccountedFor, HaveContent) {
    const CleanupPlan made = plan();
    fs::create_directories((feature / "secrets/deep").bytes());
    ASSERT_EQ(mkfifo((feature / "late.key").c_str(), 0600), 0);
    EXPECT_EQ(look(made.worktree), "");
    EXPECT_EQ(execute(made).errorSummary, std::nullopt);
}

TEST_F(FilesAccountedFor, AreLeftToGitWhenItSeesThem) {
    feature.write("left-out.txt", "mine\n");
    const Worktree reviewed = review();
    feature.write("late.txt", "mine\n");
    feature.write("late.pem", "mine\n");
    (void)GitRepository::create(feature / "inner");
    fs::remove_all((feature / "inner/.git").bytes());
    feature.write("inner/file.txt");
    EXPECT_EQ(look(reviewed), "");
    EXPECT_FALSE(gitWouldRemove());
}

TEST_F(FilesAccountedFor, AreThoseOfATrackedFolderInEveryFormOfTheIndex) {
    feature.write("a/b/c.txt");
    feature.write("a/b/d.txt");
    feature.write("a-b/c.txt");
    feature.commit("Folders");
    for (const char* version : {"2", "3", "4"}) {
        feature.git({"update-index", "--index-version", version});
        EXPECT_EQ(look(), "") << version;
    }
    feature.git({"update-index", "--split-index"});
    feature.commitFile("a/b/e.txt");
    EXPECT_EQ(look(), "");
}

}  // namespace
}  // namespace cairnfield
