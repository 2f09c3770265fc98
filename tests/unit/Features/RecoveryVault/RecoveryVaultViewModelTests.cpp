#include "Shared/Logging/Log.h"
#include "VaultFixture.h"
#include "support/CapturedLog.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using RecoveryVaultScreen = VaultFixture;

TEST_F(RecoveryVaultScreen, HasNoListForAnEmptyVault) {
    EXPECT_FALSE(screen->showsList());
    screen->reveal(0);
    screen->restore(0);
    screen->deletePermanently(0);
    EXPECT_THAT(workspace.revealed, IsEmpty());
    EXPECT_FALSE(panel.isOpen());
    EXPECT_FALSE(screen->isDeleting());
}

TEST_F(RecoveryVaultScreen, ListsTheEntriesInTheModelsOrder) {
    RecoveryVaultEntry expiring = entry("config/key.pem");
    expiring.expiresAt = app.wallClock.now() + std::chrono::hours(24);
    stage({entry(".env"), expiring});
    ASSERT_EQ(screen->rows()->rowCount(), 2);
    EXPECT_EQ(item(0).path, ".env");
    EXPECT_EQ(item(0).origin, "atlas · archived 2 days ago");
    EXPECT_EQ(item(0).expiry, "") << "it never expires";
    EXPECT_EQ(item(1).path, "config/key.pem");
    EXPECT_TRUE(item(1).expiry.startsWith("Expires "));
}

TEST_F(RecoveryVaultScreen, WordsTheAgesAnewWhenItComesIntoView) {
    stage({entry(".env")});
    app.wallClock.set(app.wallClock.now() + std::chrono::hours(72));
    screen->refreshDates();
    EXPECT_EQ(item(0).origin, "atlas · archived 5 days ago");
}

TEST_F(RecoveryVaultScreen, RevealsTheStoredCopyByteForByteOrSaysWhyNot) {
    stage({entry(".env"), entry("key\xff.pem")});
    screen->reveal(1);
    ASSERT_THAT(workspace.revealed, SizeIs(1));
    EXPECT_TRUE(workspace.revealed[0].bytes().ends_with("/key\xff.pem"));
    EXPECT_EQ(screen->notice(), "");
    workspace.answer = "No file manager was found.";
    screen->reveal(0);
    EXPECT_EQ(screen->notice(), "No file manager was found.");
    workspace.answer.reset();
    screen->reveal(0);
    EXPECT_EQ(screen->notice(), "");
}

TEST_F(RecoveryVaultScreen, AsksBeforeItDeletes) {
    const RecoveryVaultEntry env = entry("config/.env");
    keep({{env, "SECRET=1"}});
    screen->deletePermanently(0);
    EXPECT_TRUE(screen->isDeleting());
    EXPECT_EQ(screen->pendingDeletion(), env);
    EXPECT_EQ(screen->deletionQuestion(), ".env cannot be recovered afterwards. It exists nowhere else.");
    EXPECT_EQ(contentOf(env.storedPath), "SECRET=1");
}

TEST_F(RecoveryVaultScreen, DeletesNothingWhenTheQuestionIsDismissed) {
    const RecoveryVaultEntry env = entry(".env");
    keep({{env, "SECRET=1"}});
    screen->deletePermanently(0);
    screen->cancelDeletion();
    EXPECT_FALSE(screen->isDeleting());
    screen->confirmDeletion();
    startAnew();
    EXPECT_TRUE(screen->showsList());
    EXPECT_EQ(contentOf(env.storedPath), "SECRET=1");
}

TEST_F(RecoveryVaultScreen, DeletesTheConfirmedFileAloneAndShowsTheEmptyStateAfterTheLast) {
    const RecoveryVaultEntry env = entry(".env");
    const RecoveryVaultEntry key = entry("key.pem");
    keep({{env, "SECRET=1"}, {key, "KEY"}});
    screen->deletePermanently(0);
    screen->confirmDeletion();
    EXPECT_FALSE(screen->isDeleting());
    app.waitUntil([&] { return state().vaultEntries.get().size() == 1; });
    screen->flush();
    EXPECT_EQ(item(0).path, "key.pem");
    EXPECT_FALSE(exists(env.storedPath));
    EXPECT_EQ(contentOf(key.storedPath), "KEY");
    screen->deletePermanently(0);
    screen->confirmDeletion();
    app.waitUntil([&] { return state().vaultEntries.get().empty(); });
    screen->flush();
    EXPECT_FALSE(screen->showsList());
    EXPECT_FALSE(exists(key.storedPath));
}

TEST_F(RecoveryVaultScreen, KeepsTheSelectionByIdentity) {
    const RecoveryVaultEntry env = entry(".env");
    const RecoveryVaultEntry key = entry("key.pem");
    stage({env, key});
    screen->selection()->select(1);
    stage({key});
    EXPECT_EQ(screen->selection()->row(), 0);
}

TEST_F(RecoveryVaultScreen, FollowsTheStateInTheNextTurnOfTheLoop) {
    state().vaultEntries.set({entry(".env")});
    EXPECT_FALSE(screen->showsList());
    QtApplication::processEvents();
    EXPECT_TRUE(screen->showsList());
}

TEST_F(RecoveryVaultScreen, ListsTheCopiesOfAnIndexThatCannotBeDecodedAndLosesNothing) {
    const RecoveryVaultEntry env = entry(".env");
    keep({{env, "SECRET=1"}});
    for (const std::string garbled : {"not json", "{}", "[{\"id\": 7}]", "\xff\xfe"}) {
        const FilePath index = app.home.write("data/Cairnfield/recovery-vault.json", garbled);
        const CapturedLog log(Log::persistence());
        startAnew();
        ASSERT_TRUE(screen->showsList()) << garbled;
        EXPECT_EQ(item(0).path, ".env");
        EXPECT_EQ(contentOf(index), garbled);
        EXPECT_EQ(contentOf(env.storedPath), "SECRET=1");
        EXPECT_THAT(log.text(), HasSubstr("Failed to decode recovery-vault.json")) << garbled;
    }
}

TEST_F(RecoveryVaultScreen, SaysWhatShouldBeKnownAboutItsFileAndNoOther) {
    EXPECT_EQ(screen->fileNotice(), "");
    state().storedFileNotices.set({{"recovery-vault.json", "It is kept."}, {"other.json", "not shown here"}});
    screen->flush();
    EXPECT_EQ(screen->fileNotice(), "It is kept.");
    state().storedFileNotices.set({{"other.json", "not shown here"}});
    screen->flush();
    EXPECT_EQ(screen->fileNotice(), "");
}

TEST_F(RecoveryVaultScreen, SaysThatAFileStaysWhereItsEntryWasDeleted) {
    RecoveryVaultEntry elsewhere = entry(".env");
    elsewhere.storedPath = app.home.path().appending("elsewhere/.env");
    keep({{elsewhere, "content"}});
    screen->deletePermanently(0);
    screen->confirmDeletion();
    app.waitUntil([&] { return !screen->notice().isEmpty(); });
    EXPECT_TRUE(screen->notice().endsWith(QString::fromStdString(elsewhere.storedPath.display())));
    EXPECT_TRUE(exists(elsewhere.storedPath));
    screen->flush();
    EXPECT_FALSE(screen->showsList());
}

TEST_F(RecoveryVaultScreen, ListsAndMarksCopiesWhoseIndexIsLost) {
    const RecoveryVaultEntry lost = entry("conf/.env");
    keep({{lost, "content"}});
    std::filesystem::remove((app.home / "data/Cairnfield/recovery-vault.json").bytes());
    startAnew();
    ASSERT_TRUE(screen->showsList());
    EXPECT_EQ(item(0).path, "conf/.env");
    EXPECT_TRUE(item(0).origin.startsWith("Found in the vault without an entry"));
    screen->deletePermanently(0);
    EXPECT_TRUE(screen->isDeleting()) << "asked as for every other";
    screen->confirmDeletion();
    app.waitUntil([&] { return state().vaultEntries.get().empty(); });
    EXPECT_FALSE(exists(lost.storedPath));
}

}  // namespace
}  // namespace cairnfield
