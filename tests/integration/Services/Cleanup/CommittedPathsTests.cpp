// Hooks that change what the commit takes: what is left out of it by a hook must stay in somebody's sight.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string leftOut(const std::string& names) {
    return "git commit failed with exit code 0. " + names +
           ": to be committed, but in no commit and no longer seen by Git.";
}

class CommitOfAHook : public Cleanup {
protected:
    void expectRefused(const CleanupReceipt& receipt, const std::string& names) {
        EXPECT_EQ(receipt.errorSummary, leftOut(names));
        EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
        EXPECT_EQ(receipt.recoveryBranch, branch);
        EXPECT_EQ(receipt.preservedCommitSHA, feature.head());
        EXPECT_FALSE(remoteHasBranch()) << "nothing was pushed";
        expectIntact(receipt);
    }
    bool remoteHas(const std::string& path) const {
        return hub.tryGit({"cat-file", "-e", std::string(branch) + ":" + path});
    }
};

TEST_F(CommitOfAHook, MayNotDropALargeFileAndHaveItIgnored) {
    feature.write("kept.txt", "changed\n");
    feature.write("large.bin", "large\n");
    hook("pre-commit", "git rm --quiet --cached large.bin; echo large.bin >> .gitignore; git add .gitignore");
    expectRefused(clean(), "large.bin");
    EXPECT_EQ(contentOf(feature / "large.bin"), "large\n");
}

TEST_F(CommitOfAHook, MayNotDropAnEditedFileAndHaveItIgnored) {
    feature.write("kept.txt", "changed\n");
    feature.write("second.txt", "edited\n");
    hook("pre-commit",
         "git rm --quiet --cached kept.txt\n"
         "echo kept.txt >> \"$(git rev-parse --git-common-dir)/info/exclude\"");
    expectRefused(clean(), "kept.txt");
    EXPECT_EQ(contentOf(feature / "kept.txt"), "changed\n");
}

TEST_F(CommitOfAHook, MayNotDropThemAllAndNamesOne) {
    feature.write("new/a.bin", "1\n");
    feature.write("new/b.bin", "2\n");
    feature.write("new/c.bin", "3\n");
    feature.write("kept.txt", "changed\n");
    hook("pre-commit", "git rm -r --quiet --cached new; echo '*.bin' >> .gitignore; git add .gitignore");
    expectRefused(clean(), "new/a.bin and 2 more file(s)");
    EXPECT_EQ(contentOf(feature / "new/c.bin"), "3\n");
}

TEST_F(CommitOfAHook, MayNotDropARepositoryAndHaveItIgnored) {
    const GitRepository inner = GitRepository::create(feature / "inner");
    inner.commitFile("mine.txt");
    feature.write("kept.txt", "changed\n");
    hook("pre-commit", "git rm --quiet --cached inner; echo inner >> .gitignore; git add .gitignore");
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("inner"));
    EXPECT_TRUE(isThere(feature / "inner/mine.txt"));
    expectIntact(receipt);
}

TEST_F(CommitOfAHook, MayDropAFileThatGitGoesOnToSee) {
    feature.write("kept.txt", "changed\n");
    feature.write("large.bin", "large\n");
    hook("pre-commit", "git rm --quiet --cached large.bin");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              "git status failed with exit code 0. 1 reviewed file(s) are still uncommitted.");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(contentOf(feature / "large.bin"), "large\n");
    expectIntact(receipt);
}

TEST_F(CommitOfAHook, MayTakeAnEditBackOutOfIt) {
    feature.write("kept.txt", "changed\n");
    feature.write("second.txt", "edited\n");
    hook("pre-commit", "git reset --quiet -- second.txt");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              "git status failed with exit code 0. 1 reviewed file(s) are still uncommitted.");
    EXPECT_EQ(contentOf(feature / "second.txt"), "edited\n");
    expectIntact(receipt);
}

TEST_F(CommitOfAHook, MayWriteAFileAnew) {
    feature.write("kept.txt", "changed\n");
    hook("pre-commit", "echo formatted > kept.txt; git add kept.txt");
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("kept.txt"), "formatted");
}

TEST_F(CommitOfAHook, MayRenameAFile) {
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt", "new\n");
    hook("pre-commit", "git mv new.txt renamed.txt");
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("renamed.txt"), "new");
    EXPECT_FALSE(remoteHas("new.txt"));
}

TEST_F(CommitOfAHook, MayMakeADirectoryOfAFile) {
    feature.write("kept.txt", "changed\n");
    feature.write("new", "new\n");
    hook("pre-commit",
         "git rm --quiet --cached new; mv new part; mkdir new; mv part new/part; git add new/part");
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("new/part"), "new");
}

TEST_F(CommitOfAHook, MayDeleteAFile) {
    feature.write("kept.txt", "changed\n");
    feature.write("generated.txt", "of the hook's\n");
    hook("pre-commit", "git rm --quiet --force generated.txt");
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_FALSE(remoteHas("generated.txt"));
}

TEST_F(CommitOfAHook, MayFindDeletionsInIt) {
    feature.git({"rm", "--quiet", "second.txt"});
    feature.write("kept.txt", "changed\n");
    hook("pre-commit", "exit 0");
    EXPECT_EQ(clean().errorSummary, std::nullopt);
    EXPECT_FALSE(remoteHas("second.txt"));
}

TEST_F(CommitOfAHook, MayNotBringADeletedFileBackAsAnIgnoredOne) {
    feature.git({"rm", "--quiet", "second.txt"});
    feature.write("kept.txt", "changed\n");
    hook("pre-commit", "echo other > second.txt; echo second.txt >> .gitignore; git add .gitignore");
    expectRefused(clean(), "second.txt");
    EXPECT_EQ(contentOf(feature / "second.txt"), "other\n");
}

TEST_F(CommitOfAHook, IsNotAskedAboutWhenTheIndexHoldsEverything) {
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt");
    EXPECT_EQ(clean().outcome, CleanupOutcome::succeeded);
    for (const std::string& line : commandLines())
        EXPECT_EQ(line.find("ls-files"), std::string::npos) << line;
}

TEST_F(CommitOfAHook, IsNotBelievedWhenNobodyUnderstandsTheIndex) {
    feature.write("kept.txt", "changed\n");
    commands.after("commit", [this] {
        const FilePath own(feature.git({"rev-parse", "--absolute-git-dir"}));
        GitRepository::at(own).write("index", "not an index\n");
    });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("git ls-files -z failed with exit code 128."));
    EXPECT_FALSE(remoteHasBranch());
    expectIntact(receipt);
}

}  // namespace
}  // namespace cairnfield
