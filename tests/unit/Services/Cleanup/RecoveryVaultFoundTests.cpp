// Copies whose entries are gone with the index.

#include "RecoveryVaultFixture.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

class RecoveryVaultWithoutAnIndex : public RecoveryVault {
protected:
    RecoveryVaultWithoutAnIndex() {
        archived = archive({local(".env", "A=1\n"), local("conf/.env", "B=2\n")});
    }
    static std::vector<std::string> pathsOf(const std::vector<RecoveryVaultEntry>& entries) {
        std::vector<std::string> paths;
        for (const RecoveryVaultEntry& entry : entries) paths.push_back(entry.relativePath.bytes());
        std::ranges::sort(paths);
        return paths;
    }
    void damageIndex() const { home.write("data/Cairnfield/recovery-vault.json", "[{"); }

    std::vector<RecoveryVaultEntry> archived;
    RecoveryVaultService next{loop, support, volume, clock, maximum};
};

TEST_F(RecoveryVaultWithoutAnIndex, ListsEveryCopyThatIsThere) {
    fs::remove(index.bytes());
    const std::vector<RecoveryVaultEntry> found = wait(next.entries());
    ASSERT_THAT(pathsOf(found), ElementsAre(".env", "conf/.env"));
    for (const RecoveryVaultEntry& entry : found) {
        EXPECT_TRUE(entry.isFound());
        EXPECT_EQ(entry.receiptID, receiptID);
        EXPECT_EQ(entry.storedPath, directory.appending(entry.relativePath.bytes()));
        EXPECT_EQ(entry.sizeBytes, 4);
        EXPECT_EQ(entry.expiresAt, std::nullopt);
        EXPECT_EQ(entry.reason, "Found in the Recovery Vault without an entry.");
    }
    EXPECT_EQ(wait(next.entries()), found) << "with the same identities";
    EXPECT_FALSE(fs::exists(index.bytes())) << "looking writes nothing";
}

TEST_F(RecoveryVaultWithoutAnIndex, ListsThemBesideADamagedIndexAndKeepsThat) {
    damageIndex();
    EXPECT_THAT(wait(next.entries()), SizeIs(2));
    EXPECT_EQ(contentOf(index), "[{");
    EXPECT_THAT(wait(next.archive({local("new")}, worktree, "project", UUID::make(), 0)), SizeIs(1));
    EXPECT_EQ(contentOf(FilePath(index.bytes() + ".damaged")), "[{");
    EXPECT_THAT(pathsOf(wait(next.entries())), ElementsAre(".env", "conf/.env", "new"));
    const std::vector<RecoveryVaultEntry> again = entriesAgain();
    EXPECT_EQ(again, wait(next.entries())) << "they are in the new index";
    EXPECT_TRUE(again[0].isFound());
    EXPECT_FALSE(again[2].isFound()) << "the new one stands at the end";
}

TEST_F(RecoveryVaultWithoutAnIndex, RestoresAndRemovesWhatItFound) {
    damageIndex();
    const std::vector<RecoveryVaultEntry> found = wait(next.entries());
    wait(next.restore(found[0], home / "out/restored"));
    EXPECT_EQ(contentOf(home / "out/restored"), contentOf(found[0].storedPath));
    EXPECT_EQ(wait(next.remove(found[0])), std::nullopt);
    EXPECT_FALSE(fs::exists(found[0].storedPath.bytes()));
    EXPECT_THAT(wait(next.entries()), ElementsAre(found[1]));
    EXPECT_EQ(contentOf(index), "[{") << "an index that names nothing needs no change";
}

TEST_F(RecoveryVaultWithoutAnIndex, TakesPlainFilesOfItsCallsAlone) {
    fs::remove(index.bytes());
    const FilePath outside = home.write("outside/secret");
    fs::create_symlink(outside.bytes(), directory.appending("link").bytes());
    fs::create_directory_symlink(outside.parent().bytes(), directory.appending("folder").bytes());
    fs::create_directory_symlink(outside.parent().bytes(), root.appending(UUID::make().text()).bytes());
    ASSERT_EQ(mkfifo(directory.appending("pipe").c_str(), 0600), 0);
    home.write("data/Cairnfield/Recovery/not-a-call/file");
    home.write("data/Cairnfield/Recovery/file");
    home.makeDirectory("data/Cairnfield/Recovery/" + receiptID.text() + "/empty");
    EXPECT_THAT(pathsOf(wait(next.entries())), ElementsAre(".env", "conf/.env"));
}

TEST_F(RecoveryVaultWithoutAnIndex, ListsNothingTwice) {
    fs::remove(index.bytes());
    EXPECT_THAT(wait(next.entries()), SizeIs(2));
    (void)wait(next.archive({local(".env", "again")}, worktree, "project", receiptID, 0));
    EXPECT_THAT(pathsOf(wait(next.entries())), ElementsAre(".env", "conf/.env"));
}

TEST_F(RecoveryVaultWithoutAnIndex, LooksForNothingWhileTheIndexIsGood) {
    home.write("data/Cairnfield/Recovery/" + UUID::make().text() + "/left", "by an attempt that failed");
    EXPECT_EQ(wait(next.entries()), archived);
}

TEST_F(RecoveryVaultWithoutAnIndex, CannotBeReadItListsTheCopiesAndChangesNoIndex) {
    fs::remove(index.bytes());
    ASSERT_EQ(mkfifo(index.c_str(), 0600), 0);
    const std::vector<RecoveryVaultEntry> found = wait(next.entries());
    ASSERT_THAT(found, SizeIs(2));
    EXPECT_THROW((void)wait(next.archive({local("new")}, worktree, "project", UUID::make(), 0)),
                 std::system_error);
    EXPECT_EQ(wait(next.entries()), found);
    EXPECT_EQ(wait(next.remove(found[0])), std::nullopt);
    EXPECT_TRUE(fs::is_fifo(index.bytes()));
}

}  // namespace
}  // namespace cairnfield
