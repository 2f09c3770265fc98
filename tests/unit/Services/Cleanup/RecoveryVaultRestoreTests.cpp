#include "RecoveryVaultFixture.h"
#include "Services/Cleanup/VaultCopies.h"
#include "support/UnprivilegedUser.h"

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

TEST_F(RecoveryVaultRemove, DropsTheEntryOfAFileThatIsNoneOfItsOwnAndLeavesTheFile) {
    const FilePath precious = home.write("precious");
    home.write("deep/folder/precious");
    for (const FilePath& path :
         {precious, root.appending("../../../precious"), root, home.path().appending("deep"),
          home.path().appending("deep/folder/precious")}) {
        RecoveryVaultEntry entry = stored();
        entry.storedPath = path;
        EXPECT_EQ(wait(vault.remove(entry)), path);
        EXPECT_THAT(entriesAgain(), IsEmpty());
        EXPECT_TRUE(fs::exists(path.bytes())) << path.bytes();
    }
    EXPECT_TRUE(fs::exists(precious.bytes()));
    RecoveryVaultEntry entry = stored();
    entry.storedPath = home.path().appending("not/there");
    EXPECT_EQ(wait(vault.remove(entry)), std::nullopt);
    EXPECT_THAT(entries(), IsEmpty()) << "the entry of a vault that was moved away can still be dropped";
}

TEST_F(RecoveryVaultRemove, DeletesTheCopyThatLiesWhereTheDataFolderWas) {
    for (const bool isByCall : {true, false}) {
        RecoveryVaultEntry entry = stored("conf/.env");
        const std::string identity = (isByCall ? entry.receiptID : entry.id).text();
        entry.storedPath = home.write("before/Recovery/" + identity + "/conf/.env");
        home.write("before/Recovery/" + identity + "/conf/other");
        EXPECT_EQ(wait(vault.remove(entry)), std::nullopt);
        EXPECT_THAT(entriesAgain(), IsEmpty());
        EXPECT_FALSE(fs::exists(entry.storedPath.bytes()));
        EXPECT_TRUE(fs::exists(home.path().appending("before/Recovery/" + identity + "/conf/other").bytes()));
    }
}

TEST_F(RecoveryVaultRemove, FollowsNoLinkToACopyElsewhereAndDeletesNothingButAPlainFile) {
    const FilePath outside = home.write("outside/.env", "somebody else's");
    const std::string before = "before/" + receiptID.text();
    home.makeDirectory(before + "/folder");
    fs::create_directory_symlink((home / "outside").bytes(), (home / (before + "/linked")).bytes());
    fs::create_symlink(outside.bytes(), (home / (before + "/link")).bytes());
    home.makeDirectory("links");
    fs::create_directory_symlink((home / "outside").bytes(), (home / ("links/" + receiptID.text())).bytes());
    for (const std::string& place :
         {before + "/folder", before + "/linked/.env", before + "/link",
          "links/" + receiptID.text() + "/.env", before + "/folder/../../../outside/.env"}) {
        RecoveryVaultEntry entry = stored();
        entry.storedPath = FilePath(home.path().bytes() + "/" + place);
        EXPECT_EQ(wait(vault.remove(entry)), entry.storedPath) << place;
        EXPECT_THAT(entriesAgain(), IsEmpty());
    }
    EXPECT_EQ(contentOf(outside), "somebody else's");
    EXPECT_TRUE(fs::is_symlink((home / (before + "/link")).bytes()));
}

TEST_F(RecoveryVaultRemove, FailsWhenTheCopyElsewhereCannotBeDeleted) {
    fs::permissions(home.path().bytes(), fs::perms(0755));
    RecoveryVaultEntry entry = stored();
    entry.storedPath = home.write("before/" + receiptID.text() + "/.env");
    for (fs::path place = entry.storedPath.parent().bytes(); place != home.path().bytes();
         place = place.parent_path())
        fs::permissions(place, fs::perms(0755));
    const std::string outcome = asUnprivilegedUser(
        [&]() -> std::string { return deleteCopyElsewhere(entry) ? "deleted" : "none of the vault's"; });
    EXPECT_THAT(outcome, testing::MatchesRegex("threw: .*Permission denied"));
    EXPECT_TRUE(fs::exists(entry.storedPath.bytes()));
}

}  // namespace
}  // namespace cairnfield
