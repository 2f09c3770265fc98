// Changes that `git add` refuses by themselves and that the commit can hold nevertheless, and those that stay
// refused.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class StagedWork : public Cleanup {
protected:
    /// The commands that change the index or ask about it, without what they say of the worktree.
    std::vector<std::string> staging() {
        std::vector<std::string> lines;
        for (const std::string& line : commandLines()) {
            if (line.starts_with("feature: add") || line.starts_with("feature: commit"))
                lines.push_back(line.substr(std::string("feature: ").size()));
        }
        return lines;
    }
    /// A folder that is ignored and has a tracked file.
    void ignoreTrackedFolder() const {
        feature.write("dist/app.js", "as reviewed\n");
        feature.commit("Keep the output");
        feature.write(".gitignore", ".env\n*.key\nnode_modules/\nlogs/\ndist/\n");
        feature.commit("Ignore more of it");
    }
    bool remoteHas(const std::string& path) const {
        return hub.tryGit({"cat-file", "-e", std::string(branch) + ":" + path});
    }
    static constexpr const char* commitLine =
        "commit --message chore(cairnfield): preserve worktree before cleanup";
};

TEST_F(StagedWork, TakesADeletionThatIsStagedAlready) {
    feature.git({"rm", "--quiet", "second.txt"});
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt", "new\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(remoteHas("second.txt"));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(onRemote("new.txt"), "new");
    EXPECT_THAT(staging(),
                ElementsAre("add -- kept.txt second.txt new.txt", "add -- kept.txt new.txt", commitLine));
}

TEST_F(StagedWork, TakesNothingButADeletionThatIsStagedAlready) {
    feature.git({"rm", "--quiet", "second.txt"});
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(remoteHas("second.txt"));
    EXPECT_TRUE(remoteHas("kept.txt"));
    EXPECT_THAT(staging(), ElementsAre("add -- second.txt", commitLine));
}

TEST_F(StagedWork, TakesADeletionWithANameThatReadsAsAPattern) {
    feature.write("a*b", "mine\n");
    feature.write(":odd", "mine\n");
    feature.commit("Odd names");
    feature.git({"rm", "--quiet", ":(literal)a*b", ":(literal):odd"});
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(hub.git({"ls-tree", "--name-only", branch}), ".gitignore\nkept.txt\nsecond.txt");
}

TEST_F(StagedWork, TakesDeletionsAmongMorePathsThanOneCommandHolds) {
    const std::string longName(200, 'n');
    for (int i = 0; i < 3000; ++i) feature.write("many/" + longName + std::to_string(i));
    feature.commit("Many files");
    feature.git({"rm", "-r", "--quiet", "many"});
    for (int i = 0; i < 3000; ++i) feature.write("other/" + longName + std::to_string(i));
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_FALSE(remoteHas("many"));
    EXPECT_TRUE(remoteHas("other/" + longName + "0"));
    EXPECT_TRUE(remoteHas("other/" + longName + "2999"));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

TEST_F(StagedWork, TakesADeletionThatIsNotStaged) {
    std::filesystem::remove((feature / "second.txt").bytes());
    EXPECT_EQ(clean().outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(remoteHas("second.txt"));
    EXPECT_THAT(staging(), ElementsAre("add -- second.txt", commitLine));
}

TEST_F(StagedWork, TakesAnEditedFileInAnIgnoredFolder) {
    ignoreTrackedFolder();
    feature.write("dist/app.js", "edited\n");
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt", "new\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("dist/app.js"), "edited");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(onRemote("new.txt"), "new");
    EXPECT_THAT(staging(), ElementsAre("add -- dist/app.js kept.txt new.txt",
                                       "add --update -- dist/app.js kept.txt", "add -- new.txt", commitLine));
}

TEST_F(StagedWork, TakesAnEditedFileInAnIgnoredFolderBesideAStagedDeletion) {
    ignoreTrackedFolder();
    feature.write("dist/app.js", "edited\n");
    feature.git({"rm", "--quiet", "second.txt"});
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("dist/app.js"), "edited");
    EXPECT_FALSE(remoteHas("second.txt"));
}

TEST_F(StagedWork, TakesADeletedFileOfAnIgnoredFolder) {
    ignoreTrackedFolder();
    std::filesystem::remove((feature / "dist/app.js").bytes());
    feature.write("kept.txt", "changed\n");
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_FALSE(remoteHas("dist/app.js"));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

TEST_F(StagedWork, TakesNothingButADeletedFileOfAnIgnoredFolder) {
    ignoreTrackedFolder();
    std::filesystem::remove((feature / "dist/app.js").bytes());
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_FALSE(remoteHas("dist/app.js"));
    EXPECT_THAT(staging(), ElementsAre("add -- dist/app.js", commitLine));
}

TEST_F(StagedWork, LeavesAFileThatWasTakenOutOfTheIndexToTheRulesForIgnoredOnes) {
    feature.git({"rm", "--quiet", "--cached", "second.txt"});
    feature.write(".gitignore", ".env\n*.key\nnode_modules/\nlogs/\nsecond.txt\n");
    const CleanupPlan made = plan();
    ASSERT_THAT(made.worktree.status.changedPaths, Contains("second.txt"));
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(remoteHas("second.txt"));
    EXPECT_EQ(hub.git({"show", std::string(branch) + "~1:second.txt"}), "as reviewed");
    EXPECT_THAT(onRemote(".gitignore"), HasSubstr("second.txt"));
}

TEST_F(StagedWork, CopiesASecretThatWasTakenOutOfTheIndex) {
    feature.write("app.key", "committed by mistake\n");
    feature.git({"add", "--force", "app.key"});
    feature.git({"commit", "--quiet", "--message", "Oops"});
    feature.git({"rm", "--quiet", "--cached", "app.key"});
    feature.write("app.key", "the new one\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    ASSERT_EQ(receipt.recoveryVaultPaths.size(), 1);
    EXPECT_EQ(contentOf(receipt.recoveryVaultPaths.front()), "the new one\n");
    EXPECT_FALSE(remoteHas("app.key"));
}

TEST_F(StagedWork, RefusesAFileThatWasTakenOutOfTheIndexAndIsIgnoredOnlySinceTheReview) {
    feature.git({"rm", "--quiet", "--cached", "second.txt"});
    feature.write("second.txt", "edited\n");
    CleanupPlan made = plan();
    ASSERT_THAT(made.worktree.status.untrackedPaths, ElementsAre("second.txt"));
    made.untrackedPathsToCommit.clear();
    feature.ignore("second.txt");
    const CleanupReceipt receipt = execute(made);
    EXPECT_NE(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(contentOf(feature / "second.txt"), "edited\n");
    expectIntact(receipt);
}

TEST_F(StagedWork, RefusesAnUntrackedFileThatIsIgnoredSinceTheReview) {
    ignoreTrackedFolder();
    feature.write("dist/app.js", "edited\n");
    feature.write("new.txt", "mine\n");
    commands.after("switch --create", [this] { feature.ignore("new.txt"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("git add -- new.txt failed with exit code 1."));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(contentOf(feature / "new.txt"), "mine\n");
    expectIntact(receipt);
}

TEST_F(StagedWork, SaysWhatGitSaidOfEverythingElse) {
    feature.git({"config", "core.autocrlf", "input"});
    feature.git({"config", "core.safecrlf", "true"});
    feature.git({"rm", "--quiet", "second.txt"});
    feature.write("crlf.txt", "one\r\ntwo\r\n");
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                StartsWith("git add -- crlf.txt failed with exit code 128."));
    expectIntact(receipt);
}

TEST_F(StagedWork, RefusesWhatLiesOutsideOfASparseCheckout) {
    feature.git({"sparse-checkout", "set", "--cone", "inside"});
    feature.write("outside/new.txt", "mine\n");
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                StartsWith("git add -- outside/new.txt failed with exit code 1."));
    EXPECT_THAT(staging(), ElementsAre("add -- outside/new.txt"));
    EXPECT_EQ(contentOf(feature / "outside/new.txt"), "mine\n");
    expectIntact(receipt);
}

TEST_F(StagedWork, SaysWhatGitSaidWhenItDoesNotListTheIndex) {
    feature.git({"rm", "--quiet", "second.txt"});
    commands.answer("ls-files", CommandResult{128, {}, "bad"});
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                StartsWith("git add -- second.txt failed with exit code 128."));
    EXPECT_THAT(staging(), ElementsAre("add -- second.txt"));
    expectIntact(receipt);
}

TEST_F(StagedWork, SaysThatNothingIsLeftWhenTheDeletionWasTakenBack) {
    feature.git({"rm", "--quiet", "second.txt"});
    commands.after("switch --create",
                   [this] { feature.git({"checkout", "--quiet", "HEAD", "--", "second.txt"}); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("A commit hook stopped"));
    EXPECT_EQ(contentOf(feature / "second.txt"), "as reviewed\n");
    expectIntact(receipt);
}

}  // namespace
}  // namespace cairnfield
