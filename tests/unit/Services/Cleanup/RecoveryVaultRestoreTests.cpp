#include "RecoveryVaultFixture.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
namespace fs = std::filesystem;

class RecoveryVaultRestore : public RecoveryVault {
protected:
    RecoveryVaultEntry stored(const std::string& relative = ".env", const std::string& content = "secret\n") {
        return archive({local(relative, content)})[0];
    }
    void restore(const RecoveryVaultEntry& entry, const FilePath& destination) {
        wait(vault.restore(entry, destination));
    }
};

TEST_F(RecoveryVaultRestore, CopiesTheFileOutAndKeepsIt) {
    const std::string content(700'000, 'q');
    const RecoveryVaultEntry entry = stored("conf/.env", content);
    const FilePath destination = home.makeDirectory("out").appending("restored");
    restore(entry, destination);
    EXPECT_EQ(contentOf(destination), content);
    EXPECT_EQ(modeOf(destination), 0600U);
    EXPECT_EQ(contentOf(entry.storedPath), content);
    EXPECT_THAT(entriesAgain(), ElementsAre(entry));
    EXPECT_THAT(filesIn(home.path().appending("out")), SizeIs(1));
}

TEST_F(RecoveryVaultRestore, MakesTheFoldersOnTheWay) {
    restore(stored(), home.path().appending("out/a/b/.env"));
    EXPECT_EQ(contentOf(home.path().appending("out/a/b/.env")), "secret\n");
}

TEST_F(RecoveryVaultRestore, FailsTheSecondTimeAtTheSamePlace) {
    const RecoveryVaultEntry entry = stored();
    const FilePath destination = home / "out/again.env";
    restore(entry, destination);
    home.write("out/again.env", "edited since");
    EXPECT_EQ(failureOf(vault.restore(entry, destination)), vaultFailure("again.env already exists."));
    EXPECT_EQ(contentOf(destination), "edited since");
    EXPECT_THAT(filesIn(home.path().appending("out")), SizeIs(1));
}

TEST_F(RecoveryVaultRestore, OverwritesNothingWhateverItIs) {
    const RecoveryVaultEntry entry = stored();
    home.makeDirectory("out/folder");
    home.write("out/target", "untouched");
    fs::create_symlink("target", home.path().appending("out/link").bytes());
    fs::create_symlink("nowhere", home.path().appending("out/dangling").bytes());
    for (const std::string name : {"folder", "link", "dangling", ".", ".."})
        EXPECT_EQ(failureOf(vault.restore(entry, home.path().appending("out/" + name))),
                  vaultFailure(name + " already exists."));
    EXPECT_EQ(contentOf(home.path().appending("out/target")), "untouched");
    EXPECT_FALSE(fs::exists(home.path().appending("out/nowhere").bytes()));
}

TEST_F(RecoveryVaultRestore, FailsWhenTheStoredCopyIsMissing) {
    const RecoveryVaultEntry entry = stored("conf/.env");
    fs::remove_all(directory.bytes());
    EXPECT_EQ(failureOf(vault.restore(entry, home.path().appending("out/new/.env"))),
              vaultFailure("The stored copy is missing."));
    EXPECT_FALSE(fs::exists(home.path().appending("out").bytes())) << "asked before anything is made";
    EXPECT_THAT(entries(), SizeIs(1));
}

TEST_F(RecoveryVaultRestore, PassesOnAFailureOfTheCopyUnchanged) {
    const RecoveryVaultEntry entry = stored();
    const FilePath file = home.write("file");
    EXPECT_THROW(restore(entry, file.appending("below")), std::system_error);
    EXPECT_THROW(restore(entry, home / ("out/" + std::string(256, 'n'))), std::system_error);
    EXPECT_THAT(filesIn(home.path().appending("out")), IsEmpty());
    EXPECT_EQ(contentOf(entry.storedPath), "secret\n");
}

TEST_F(RecoveryVaultRestore, FollowsNoLinkThatStandsInForTheStoredCopy) {
    const RecoveryVaultEntry entry = stored();
    const FilePath other = home.write("other", "somebody else's");
    fs::remove(entry.storedPath.bytes());
    fs::create_symlink(other.bytes(), entry.storedPath.bytes());
    EXPECT_THROW(restore(entry, home / "out/x"), std::system_error);
    EXPECT_THAT(filesIn(home.path().appending("out")), IsEmpty());
}

using RecoveryVaultRemove = RecoveryVaultRestore;

TEST_F(RecoveryVaultRemove, DeletesTheStoredCopyAndItsEntry) {
    const RecoveryVaultEntry first = stored("a/.env", "1");
    const RecoveryVaultEntry second = stored("b/.env", "2");
    wait(vault.remove(first));
    EXPECT_THAT(entriesAgain(), ElementsAre(second));
    EXPECT_THAT(filesIn(root), ElementsAre(Pair(receiptID.text() + "/b/.env", "2")));
    wait(vault.remove(second));
    EXPECT_THAT(entriesAgain(), IsEmpty());
    EXPECT_TRUE(fs::is_directory(directory.bytes())) << "the folder stays when its last file goes";
    EXPECT_EQ(contentOf(inWorktree("a/.env")), "1");
}

TEST_F(RecoveryVaultRemove, MindsNoStoredCopyThatIsGone) {
    const RecoveryVaultEntry entry = stored();
    fs::remove_all(root.bytes());
    wait(vault.remove(entry));
    EXPECT_THAT(entriesAgain(), IsEmpty());
    wait(vault.remove(entry));
}

TEST_F(RecoveryVaultRemove, RemovesEveryEntryOfTheIdentity) {
    (void)stored();
    const std::string one = contentOf(index);
    const std::string item = one.substr(one.find('{'), one.rfind('}') - one.find('{') + 1);
    home.write("data/Cairnfield/recovery-vault.json", "[" + item + "," + item + "]");
    RecoveryVaultService next(loop, support, volume, clock, maximum);
    const std::vector<RecoveryVaultEntry> twice = wait(next.entries());
    ASSERT_THAT(twice, SizeIs(2));
    wait(next.remove(twice[0]));
    EXPECT_THAT(wait(next.entries()), IsEmpty());
}

TEST_F(RecoveryVaultRemove, KeepsTheEntryOfACopyThatStays) {
    const RecoveryVaultEntry entry = stored();
    fs::remove(entry.storedPath.bytes());
    home.write("data/Cairnfield/Recovery/" + receiptID.text() + "/.env/file");
    EXPECT_THROW(wait(vault.remove(entry)), std::system_error);
    EXPECT_THAT(entriesAgain(), ElementsAre(entry));
}

TEST_F(RecoveryVaultRemove, DeletesNothingOutsideOfTheVault) {
    RecoveryVaultEntry entry = stored();
    const FilePath precious = home.write("precious");
    for (const FilePath& path : {precious, root.appending("../../../precious"), root}) {
        entry.storedPath = path;
        EXPECT_EQ(failureOf(vault.remove(entry)), vaultFailure("The stored copy is not in the vault."));
    }
    EXPECT_TRUE(fs::exists(precious.bytes()));
    EXPECT_THAT(entries(), SizeIs(1));
    entry.storedPath = home.path().appending("not/there");
    wait(vault.remove(entry));
    EXPECT_THAT(entries(), IsEmpty()) << "the entry of a vault that was moved away can still be dropped";
}

}  // namespace
}  // namespace cairnfield
