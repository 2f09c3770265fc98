// Work that git would remove without a word, since it cannot see it or takes it for safe: found by running
// cleanups of made-up worlds.

#include "integration/Services/Cleanup/LastLookStage.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>
#include <fcntl.h>
#include <filesystem>

namespace cairnfield {
namespace {

using testing::HasSubstr;

/// Of the file's last change of any kind.
timespec changeOf(const FilePath& file) {
    struct stat status{};
    EXPECT_EQ(stat(file.c_str(), &status), 0);
    return status.st_ctim;
}

class UnseenWork : public LastLook {
protected:
    const FilePath file = feature / "kept.txt";

    void setTime(std::time_t seconds) const {
        const std::array times{timespec{seconds, 0}, timespec{seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    }
    /// Writes as many bytes as were there and sets the time back, all in the second in which git has looked.
    void changeUnseen() {
        constexpr std::time_t longAgo = 1'700'000'000;
        timespec before{};
        do {
            feature.write("kept.txt", "as reviewed\n");
            setTime(longAgo);
            feature.git({"update-index", "--refresh"});
            before = changeOf(file);
            feature.write("kept.txt", "AS REWORKED\n");
            setTime(longAgo);
        } while (changeOf(file).tv_sec != before.tv_sec);
    }
    /// So that nothing is known of what the branch has beyond others.
    void forgetBaseBranch() const {
        hub.git({"branch", "--move", "main", "trunk"});
        project.git({"branch", "--move", "main", "trunk"});
        project.git({"update-ref", "-d", "refs/remotes/origin/main"});
        (void)project.tryGit({"symbolic-ref", "--delete", "refs/remotes/origin/HEAD"});
    }
};

TEST_F(UnseenWork, IsAFileThatChangesTwiceInASecondAndIsSetBack) {
    changeUnseen();
    EXPECT_EQ(feature.git({"--no-optional-locks", "status", "--porcelain"}), "") << "git sees it";
    EXPECT_EQ(look(), "kept.txt differs from what Git holds, and Git does not see it.");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(UnseenWork, IsNoFileThatOnlyLooksChanged) {
    changeUnseen();
    feature.write("kept.txt", "as reviewed\n");
    setTime(1'700'000'000);
    EXPECT_EQ(look(), "");
}

TEST_F(UnseenWork, IsACommitOnAReferenceOfTheWorktreesOwn) {
    forgetBaseBranch();
    feature.git({"update-ref", "refs/worktree/wip", "HEAD"});
    feature.git({"symbolic-ref", "HEAD", "refs/worktree/wip"});
    const std::string commit = feature.commitFile("only-here.txt");
    const CleanupPlan made = plan();
    EXPECT_FALSE(made.requiresPreservation());
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its commits are on a reference of its own."));
    EXPECT_EQ(feature.head(), commit);
    expectIntact(receipt);
}

TEST_F(UnseenWork, IsNoCommitOnABranchOfTheRepository) {
    forgetBaseBranch();
    const std::string commit = feature.commitFile("more.txt");
    EXPECT_EQ(clean().outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(project.git({"rev-parse", "feature"}), commit);
}

TEST_F(UnseenWork, IsNoReferenceOfItsOwnThatHoldsNothingNew) {
    feature.git({"update-ref", "refs/worktree/wip", "HEAD"});
    feature.git({"symbolic-ref", "HEAD", "refs/worktree/wip"});
    EXPECT_EQ(look(), "");
}

TEST_F(UnseenWork, IsASecretThatChangesAfterItWasCopiedAndIsSetBack) {
    const FilePath secret = feature / ".env";
    feature.write(".env", "SECRET=1\n");
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no", [&] {
        const auto before = std::filesystem::last_write_time(secret.bytes());
        feature.write(".env", "SECRET=2\n");
        std::filesystem::last_write_time(secret.bytes(), before);
    });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr(".env changed after it was copied to the Recovery Vault."));
    EXPECT_EQ(contentOf(secret), "SECRET=2\n");
    expectIntact(receipt);
}

TEST_F(UnseenWork, LiesWhereOurOwnFilesWillComeToBe) {
    std::filesystem::create_directories((feature / "logs").bytes());
    EXPECT_EQ(look(review(), {feature / "logs/data/Cairnfield"}), "Cairnfield's own files lie inside it.");
}

}  // namespace
}  // namespace cairnfield
