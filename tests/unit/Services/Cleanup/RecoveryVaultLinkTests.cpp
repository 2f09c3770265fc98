// Worktrees that try to lead a copy astray.

#include "RecoveryVaultFixture.h"
#include "Services/Cleanup/LocalFile.h"
#include "support/UnprivilegedUser.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <thread>
#include <unistd.h>

namespace cairnfield {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

class RecoveryVaultLinks : public RecoveryVault {
protected:
    void link(const std::string& relative, const std::string& target) const {
        fs::create_symlink(target, (home / ("worktree/" + relative)).bytes());
    }
    void expectRefused(const IgnoredEntry& file, const std::string& words) {
        const CairnfieldError failure = failureOfArchiving({file});
        const auto* refused = failure.as<CairnfieldError::RecoveryVaultFailure>();
        ASSERT_TRUE(refused) << failure.errorDescription();
        EXPECT_THAT(refused->message, HasSubstr(file.name));
        EXPECT_THAT(refused->message, HasSubstr(words));
        EXPECT_THAT(filesIn(root), IsEmpty());
        EXPECT_THAT(entriesAgain(), IsEmpty());
    }

    void expectNothingKept(const std::vector<std::string>& names) {
        std::vector<IgnoredEntry> files;
        for (const std::string& name : names) {
            files.push_back(entryFor(name, 7));
            EXPECT_TRUE(isLinkThatKeepsNothing(worktree.path, files.back())) << name;
        }
        EXPECT_THAT(archive(files), IsEmpty());
        EXPECT_THAT(filesIn(root), IsEmpty());
        EXPECT_THAT(entriesAgain(), IsEmpty());
    }

    static constexpr const char* leadsOut = " is a link that leads out of the worktree; review it manually.";
};

TEST_F(RecoveryVaultLinks, KeepTheContentOfALinkAndNotTheLink) {
    home.write("worktree/conf/real.env", "content");
    link(".env", "conf/real.env");
    link("absolute.env", inWorktree("conf/real.env").bytes());
    link("chain.env", ".env");
    const auto added = archive({entryFor(".env", 7), entryFor("absolute.env", 7), entryFor("chain.env", 7)});
    ASSERT_THAT(added, SizeIs(3));
    for (const RecoveryVaultEntry& entry : added) {
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(entry.storedPath.bytes())));
        EXPECT_EQ(contentOf(entry.storedPath), "content");
    }
}

TEST_F(RecoveryVaultLinks, WorkInAWorktreeThatIsItselfReachedByALink) {
    const IgnoredEntry file = local(".env", "content");
    fs::create_symlink(worktree.path.bytes(), home.path().appending("alias").bytes());
    worktree.path = home.path().appending("alias");
    EXPECT_EQ(contentOf(archive({file})[0].storedPath), "content");
}

TEST_F(RecoveryVaultLinks, ThatLeadOutOfTheWorktreeKeepNothingAndStopNothing) {
    const FilePath outside = home.write("outside/secret", "not of this worktree");
    link("relative", "../outside/secret");
    link("absolute", outside.bytes());
    link("worktree-like", worktree.path.bytes() + "-other");
    link("to-outer-folder", "../outside");
    link("to-the-worktree", ".");
    link("device", "/dev/zero");
    home.write("worktree-other", "a sibling whose name begins alike");
    expectNothingKept(
        {"relative", "absolute", "worktree-like", "to-outer-folder", "to-the-worktree", "device"});
    EXPECT_EQ(contentOf(outside), "not of this worktree");
}

TEST_F(RecoveryVaultLinks, ThatLeadNowhereKeepNothingAndStopNothing) {
    home.write("worktree/file");
    link("dangling", "nowhere");
    link("through-a-file", "file/below");
    link("circle", "circle");
    link("chain", "dangling");
    expectNothingKept({"dangling", "through-a-file", "circle", "chain"});
}

TEST_F(RecoveryVaultLinks, ToAFolderOfTheWorktreeKeepNothingAndStopNothing) {
    home.makeDirectory("worktree/folder");
    link("to-folder", "folder");
    expectNothingKept({"to-folder"});
}

TEST_F(RecoveryVaultLinks, OfOtherFilesAreKeptBesideThoseThatKeepNothing) {
    link("out.env", "../elsewhere");
    const auto added = archive({entryFor("out.env", 7), local(".env", "content")});
    ASSERT_THAT(added, SizeIs(1));
    EXPECT_EQ(contentOf(added[0].storedPath), "content");
}

TEST_F(RecoveryVaultLinks, KeepSomethingWhenTheyLeadToAFileOfTheWorktreeOrAreNone) {
    home.write("worktree/conf/real.env", "content");
    home.makeDirectory("worktree/folder");
    home.write("outside/secret");
    ASSERT_EQ(mkfifo(inWorktree("pipe").c_str(), 0600), 0);
    link("to-file", "conf/real.env");
    link("to-pipe", "pipe");
    link("out", "../outside");
    fs::create_symlink("nowhere", (home / "outside/dangling").bytes());
    for (const char* name :
         {"conf/real.env", "folder", "pipe", "to-file", "to-pipe", "absent", "out/secret", "out/dangling"})
        EXPECT_FALSE(isLinkThatKeepsNothing(worktree.path, entryFor(name, 7))) << name;
}

TEST_F(RecoveryVaultLinks, OnTheWayNeverLeadOut) {
    home.write("outside/secret", "not of this worktree");
    link("folder", "../outside");
    expectRefused(entryFor("folder/secret", 7), leadsOut);
}

TEST_F(RecoveryVaultLinks, NeverLeadIntoTheVault) {
    worktree.path = home.path();
    fs::create_directories(root.bytes());
    home.write("data/Cairnfield/Recovery/kept", "in the vault");
    fs::create_symlink(root.appending("kept").bytes(), home.path().appending("link").bytes());
    const CairnfieldError failure = failureOfArchiving({entryFor("link", 7)});
    EXPECT_EQ(failure, vaultFailure("link is a link that leads into the vault; review it manually."));
}

TEST_F(RecoveryVaultLinks, ThatMayNotBeFollowedAreFailuresAndNotSkipped) {
    home.write("worktree/locked/real.env", "content");
    link(".env", "locked/real.env");
    fs::permissions(worktree.path.bytes(), fs::perms(0755));
    fs::permissions(inWorktree("locked").bytes(), fs::perms(0700));
    const std::string outcome = asUnprivilegedUser([&]() -> std::string {
        const IgnoredEntry file = entryFor(".env", 7);
        if (isLinkThatKeepsNothing(worktree.path, file)) return "keeps nothing";
        try {
            return openLocalFile(worktree.path, file, AT_FDCWD) ? "opened" : "skipped";
        } catch (const CairnfieldError& error) {
            return error.as<CairnfieldError::RecoveryVaultFailure>()->message;
        }
    });
    EXPECT_EQ(outcome, ".env: Permission denied");
}

TEST_F(RecoveryVaultLinks, AreNotMadeIntoTheVaultByAPath) {
    home.write("outside/secret");
    for (const char* path : {"../outside/secret", "a/../../outside/secret", "./a", "..", ".", "", "/",
                             "conf/..", "/etc/hostname"}) {
        IgnoredEntry file = entryFor(path, 7);
        file.name = "name";
        const CairnfieldError failure = failureOfArchiving({file});
        EXPECT_EQ(failure, vaultFailure("name is not a path inside the worktree.")) << path;
    }
    EXPECT_THAT(filesIn(home.path().appending("data")), IsEmpty());
}

TEST_F(RecoveryVaultLinks, InTheVaultAreNotFollowed) {
    const FilePath outside = home.makeDirectory("outside");
    fs::create_directories(directory.bytes());
    fs::create_directory_symlink(outside.bytes(), directory.appending("conf").bytes());
    (void)failureOfArchiving({local("conf/.env")});
    EXPECT_THAT(filesIn(outside), IsEmpty());
    const FilePath target = home.write("target", "untouched");
    fs::create_symlink(target.bytes(), directory.appending("file").bytes());
    EXPECT_THAT(archive({local("file", "content")}), SizeIs(1));
    EXPECT_EQ(contentOf(target), "untouched");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(directory.appending("file").bytes())));
}

TEST_F(RecoveryVaultLinks, AndEverythingElseThatIsNoFileIsRefused) {
    home.makeDirectory("worktree/folder");
    ASSERT_EQ(mkfifo(inWorktree("pipe").c_str(), 0600), 0);
    link("to-pipe", "pipe");
    expectRefused(entryFor("folder", 7), " is not a file; review it manually.");
    expectRefused(entryFor("pipe", 7), " is not a file; review it manually.");
    expectRefused(entryFor("to-pipe", 7), " is not a file; review it manually.");
}

TEST_F(RecoveryVaultLinks, ThatAreSwappedWhileACopyIsMadeGainNothing) {
    // Two names are exchanged as fast as they can be: a folder of the worktree and a link to a folder
    // outside.
    home.write("outside/.env", "not of this worktree");
    home.write("worktree/conf/.env", "content");
    link("other", "../outside");
    std::atomic<bool> stop = false;
    std::thread swapping([&] {
        while (!stop) {
            renameat2(AT_FDCWD, inWorktree("conf").c_str(), AT_FDCWD, inWorktree("other").c_str(),
                      RENAME_EXCHANGE);
        }
    });
    int copied = 0;
    int refused = 0;
    for (int round = 0; round < 2000 && (copied < 20 || refused < 20); ++round) {
        try {
            const auto added = archive({entryFor("conf/.env", 7)});
            if (added.empty()) continue;
            EXPECT_EQ(contentOf(added[0].storedPath), "content");
            ++copied;
        } catch (const CairnfieldError&) {
            ++refused;
        }
    }
    stop = true;
    swapping.join();
    EXPECT_GT(copied, 0);
    EXPECT_GT(refused, 0);
}

TEST_F(RecoveryVaultLinks, OrNotAFileThatChangesWhileItIsCopiedIsRefused) {
    const IgnoredEntry file = local("growing", "begun\n");
    std::atomic<bool> stop = false;
    std::thread growing([&] {
        const FileDescriptor end(open(inWorktree("growing").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
        while (!stop && write(end.get(), "x", 1) == 1) {
        }
    });
    std::optional<CairnfieldError> refused;
    for (int round = 0; round < 2000 && !refused; ++round) {
        try {
            (void)archive({file});
        } catch (const CairnfieldError& error) {
            refused = error;
        }
    }
    stop = true;
    growing.join();
    EXPECT_EQ(refused, vaultFailure("growing changed while it was copied."));
}

}  // namespace
}  // namespace cairnfield
