// What is left when the program is killed, the disk is full, or the vault may not be written.

#include "Persistence/JSONFile.h"
#include "RecoveryVaultFixture.h"
#include "support/SmallDisk.h"
#include "support/SteppedChild.h"
#include "support/UnprivilegedUser.h"

#include <gmock/gmock.h>

#include <unistd.h>

namespace cairnfield {
namespace {

using testing::Each;
using testing::IsEmpty;
using testing::Key;
using testing::SizeIs;
using testing::StartsWith;
namespace fs = std::filesystem;

const std::map<std::string, std::string> contents{{".env", "A=1\n"},
                                                  {"conf/key.pem", std::string(600'000, 'k')}};

/// Two steps lie between the beginnings of two system calls, and nothing happens between the end of one and
/// the beginning of the next.
constexpr int oneCall = 2;

/// A vault as a new start of the program finds it.
class VaultAfterCrash : public RecoveryVault {
protected:
    std::vector<IgnoredEntry> files() const {
        std::vector<IgnoredEntry> made;
        made.reserve(contents.size());
        for (const auto& [name, content] : contents) made.push_back(local(name, content));
        return made;
    }
};

void archiveInChild(const FilePath& home, const std::vector<IgnoredEntry>& files, const UUID& receiptID) {
    RunLoop loop;
    SettableVolume volume;
    const SettableWallClock clock{Date(std::chrono::seconds(1'750'000'000))};
    const ApplicationSupport support(home.appending("data"), home.appending("config"));
    RecoveryVaultService vault(loop, support, volume, clock, 10'000'000);
    Worktree worktree;
    worktree.path = home.appending("worktree");
    waitFor(loop, vault.archive(files, worktree, "project", receiptID, 90));
}

TEST_F(VaultAfterCrash, AtEveryStepOfArchivingHasLostNothingAndNothingHalfWritten) {
    const std::vector<IgnoredEntry> asked = files();
    const FilePath data = home.path().appending("data");
    int without = 0;
    int with = 0;
    int copiesWithoutEntry = 0;
    for (int steps = 0; steps < 5000; steps += oneCall) {
        SCOPED_TRACE("killed after " + std::to_string(steps) + " steps");
        fs::remove_all(data.bytes());
        SteppedChild child([&] { archiveInChild(home.path(), asked, receiptID); });
        const bool running = child.step(steps);
        child.kill();

        RecoveryVaultService next(loop, support, volume, clock, maximum);
        const std::vector<RecoveryVaultEntry> found = wait(next.entries());
        // Without an index the copies are found by looking for them, as many as there are.
        const bool hasIndex = fs::exists(index.bytes());
        if (hasIndex) ASSERT_EQ(found.size(), contents.size());
        (hasIndex ? with : without) += 1;
        for (const RecoveryVaultEntry& entry : found)
            ASSERT_EQ(contentOf(entry.storedPath), contents.at(entry.relativePath.bytes()));
        // Whatever has a name in the vault is whole, and what has none yet is gone.
        const std::map<std::string, std::string> stored = filesIn(root);
        const std::string folder = receiptID.text() + "/";
        for (const auto& [name, content] : stored) {
            ASSERT_THAT(name, StartsWith(folder));
            ASSERT_EQ(content, contents.at(name.substr(folder.size())));
        }
        if (!hasIndex) ASSERT_EQ(found.size(), stored.size());
        copiesWithoutEntry += !hasIndex && !stored.empty() ? 1 : 0;
        ASSERT_EQ(filesIn(worktree.path), contents) << "the originals stay";

        // The next attempt is not in anybody's way.
        ASSERT_THAT(wait(next.archive(asked, worktree, "project", receiptID, 90)), SizeIs(contents.size()));
        if (running) continue;
        EXPECT_EQ(child.exitStatus(), 0);
        EXPECT_THAT(found, SizeIs(contents.size()));
        EXPECT_GE(without, 10);
        EXPECT_GE(with, 1);
        EXPECT_GE(copiesWithoutEntry, 2);
        return;
    }
    FAIL() << "the archiving never ended";
}

TEST_F(VaultAfterCrash, AtEveryStepOfRestoringHasTheWholeFileOrNone) {
    (void)archive(files());
    const std::vector<RecoveryVaultEntry> before = entriesAgain();
    const auto inVault = filesIn(root);
    const RecoveryVaultEntry& entry = before.back();
    const std::string& content = contents.at(entry.relativePath.bytes());
    int absent = 0;
    int present = 0;
    for (int steps = 0; steps < 5000; steps += oneCall) {
        SCOPED_TRACE("killed after " + std::to_string(steps) + " steps");
        const FilePath out = home.path().appending("out");
        fs::remove_all(out.bytes());
        SteppedChild child([&] {
            RunLoop ownLoop;
            RecoveryVaultService own(ownLoop, support, volume, clock, maximum);
            waitFor(ownLoop, own.restore(entry, out.appending("restored")));
        });
        const bool running = child.step(steps);
        child.kill();

        const std::map<std::string, std::string> found = filesIn(out);
        ASSERT_THAT(found, Each(Key("restored"))) << "nothing else is left beside it";
        if (!found.empty()) ASSERT_EQ(found.at("restored"), content);
        (found.empty() ? absent : present) += 1;
        ASSERT_EQ(filesIn(root), inVault);
        ASSERT_EQ(entriesAgain(), before);
        if (running) continue;
        EXPECT_EQ(child.exitStatus(), 0);
        EXPECT_THAT(found, SizeIs(1));
        EXPECT_GE(absent, 5);
        EXPECT_GE(present, 1);
        return;
    }
    FAIL() << "the restoring never ended";
}

TEST_F(VaultAfterCrash, AtEveryStepOfRemovingHasTheEntryOrNot) {
    int kept = 0;
    int gone = 0;
    for (int steps = 0; steps < 5000; steps += oneCall) {
        SCOPED_TRACE("killed after " + std::to_string(steps) + " steps");
        fs::remove_all(home.path().appending("data").bytes());
        RecoveryVaultService first(loop, support, volume, clock, maximum);
        const auto added = wait(first.archive(files(), worktree, "project", receiptID, 90));
        SteppedChild child([&] {
            RunLoop ownLoop;
            RecoveryVaultService own(ownLoop, support, volume, clock, maximum);
            waitFor(ownLoop, own.remove(added[0]));
        });
        const bool running = child.step(steps);
        child.kill();

        RecoveryVaultService next(loop, support, volume, clock, maximum);
        const std::vector<RecoveryVaultEntry> found = wait(next.entries());
        ASSERT_TRUE(found == added || found == std::vector{added[1]});
        (found == added ? kept : gone) += 1;
        ASSERT_EQ(contentOf(added[1].storedPath), contents.at(added[1].relativePath.bytes()));
        wait(next.remove(added[0]));
        ASSERT_EQ(wait(next.entries()), std::vector{added[1]});
        if (running) continue;
        EXPECT_EQ(child.exitStatus(), 0);
        EXPECT_GE(kept, 3);
        EXPECT_GE(gone, 1);
        return;
    }
    FAIL() << "the removing never ended";
}

/// In a child process: archives on a disk that has no room, and says what it met and what is left.
std::string archiveOnFullDisk(const FilePath& disk, const Worktree& worktree, const IgnoredEntry& file) {
    const ApplicationSupport support(disk.appending("data"), disk.appending("config"));
    fs::create_directories(support.recoveryVaultDirectory().bytes());
    RunLoop loop;
    SettableVolume volume;
    const SettableWallClock clock{Date(std::chrono::seconds(1'750'000'000))};
    RecoveryVaultService vault(loop, support, volume, clock, 10'000'000);
    std::string outcome;
    try {
        waitFor(loop, vault.archive({file}, worktree, "project", UUID::make(), 90));
        return "archived";
    } catch (const CairnfieldError& error) {
        outcome = error.errorDescription();
    }
    for (const auto& item : fs::recursive_directory_iterator(disk.bytes()))
        if (item.is_regular_file()) outcome += " " + item.path().filename().native();
    return outcome;
}

TEST_F(VaultAfterCrash, OnAFullDiskSaysSoAndLeavesNoPartOfACopy) {
    const IgnoredEntry file = local("key.pem", std::string(600'000, 'k'));
    const std::optional<std::string> outcome =
        onSmallDisk(300'000, [&](const FilePath& disk) { return archiveOnFullDisk(disk, worktree, file); });
    if (!outcome) GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(*outcome, "The Recovery Vault could not store the files. key.pem: No space left on device");
    EXPECT_EQ(contentOf(inWorktree("key.pem")).size(), 600'000U);
}

TEST_F(VaultAfterCrash, RestoringToAFullDiskLeavesNoPartOfAFile) {
    const RecoveryVaultEntry entry = archive({local("key.pem", std::string(600'000, 'k'))})[0];
    const std::optional<std::string> outcome = onSmallDisk(300'000, [&](const FilePath& disk) {
        RunLoop ownLoop;
        RecoveryVaultService own(ownLoop, support, volume, clock, maximum);
        try {
            waitFor(ownLoop, own.restore(entry, disk.appending("out/key.pem")));
        } catch (const std::system_error& error) {
            return error.code().message() + std::to_string(filesIn(disk).size());
        }
        return std::string("restored");
    });
    if (!outcome) GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(*outcome, "No space left on device0");
    EXPECT_EQ(contentOf(entry.storedPath).size(), 600'000U);
}

class VaultOfAnotherUser : public RecoveryVault {
protected:
    /// What archiving one file says to a user without rights.
    std::string outcomeFor(const IgnoredEntry& file) {
        return asUnprivilegedUser([&] {
            RunLoop ownLoop;
            RecoveryVaultService own(ownLoop, support, volume, clock, maximum);
            try {
                waitFor(ownLoop, own.archive({file}, worktree, "project", receiptID, 90));
            } catch (const CairnfieldError& error) {
                return error.errorDescription();
            }
            return std::string("archived");
        });
    }
    void giveAway(const FilePath& path) const {
        if (geteuid() == 0) ASSERT_EQ(lchown(path.c_str(), 65'534, 65'534), 0);
    }
};

TEST_F(VaultOfAnotherUser, CannotBeMade) {
    EXPECT_EQ(outcomeFor(local(".env")), "The Recovery Vault could not store the files. Permission denied");
    EXPECT_FALSE(fs::exists(support.directory().bytes()));
}

TEST_F(VaultOfAnotherUser, CannotBeWritten) {
    if (geteuid() != 0) GTEST_SKIP() << "needs a second user";
    fs::create_directories(root.bytes());
    fs::permissions(root.bytes(), fs::perms(0755));
    EXPECT_EQ(outcomeFor(local(".env")), "The Recovery Vault could not store the files. Permission denied");
    EXPECT_THAT(filesIn(support.directory()), IsEmpty());
}

TEST_F(VaultOfAnotherUser, TakesNoFileThatCannotBeRead) {
    if (geteuid() != 0) GTEST_SKIP() << "needs a second user";
    giveAway(home.makeDirectory("data"));
    const IgnoredEntry closed = local("closed.env");
    fs::permissions(inWorktree("closed.env").bytes(), fs::perms(0));
    EXPECT_EQ(outcomeFor(closed),
              "The Recovery Vault could not store the files. closed.env: Permission denied");
    const IgnoredEntry below = local("closed/.env");
    fs::permissions(inWorktree("closed").bytes(), fs::perms(0));
    EXPECT_EQ(outcomeFor(below),
              "The Recovery Vault could not store the files. closed/.env: Permission denied")
        << "a file that cannot be seen is not taken for one that is gone";
    EXPECT_THAT(filesIn(support.directory()), IsEmpty());
    EXPECT_EQ(outcomeFor(local("open.env")), "archived");
}

}  // namespace
}  // namespace cairnfield
