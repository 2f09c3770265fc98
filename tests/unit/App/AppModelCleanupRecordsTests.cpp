// The receipts and the vault as the model shows them.

#include "support/AppModelStaging.h"
#include "unit/App/CleanupModel.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CleanupRecords : CleanupModel {
    CleanupRecords() {
        app.settings.preserveSmallLocalFiles.set(true);
        start();
        EXPECT_EQ(clean(feature).outcome, CleanupOutcome::succeeded);
        entry = state().vaultEntries.get().at(0);
    }
    RecoveryVaultEntry entry;
};

TEST_F(CleanupRecords, AreThereAgainAtTheNextStart) {
    const std::vector<CleanupReceipt> receipts = state().receipts.get();
    app.restart();
    EXPECT_THAT(state().receipts.get(), IsEmpty());
    app.run(app.model->start());
    EXPECT_EQ(state().receipts.get().size(), 1U);
    EXPECT_EQ(state().receipts.get()[0].id, receipts[0].id);
    ASSERT_EQ(state().vaultEntries.get().size(), 1U);
    EXPECT_EQ(state().vaultEntries.get()[0].id, entry.id);
    EXPECT_EQ(state().lastReceipt.get(), std::nullopt) << "of this run of the program";
}

TEST_F(CleanupRecords, ARemovedVaultFileIsGone) {
    app.run(app.model->removeVaultEntry(entry));
    EXPECT_THAT(state().vaultEntries.get(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(entry.storedPath.bytes()));
}

TEST_F(CleanupRecords, AVaultFileThatCannotBeRemovedIsListedAsItStands) {
    std::filesystem::remove(entry.storedPath.bytes());
    std::filesystem::create_directory(entry.storedPath.bytes());
    AppModelStaging::state(*app.model).vaultEntries.set({});  // as if the screen were out of date
    app.run(app.model->removeVaultEntry(entry));
    EXPECT_THAT(state().vaultEntries.get(), ElementsAre(entry));
}

TEST_F(CleanupRecords, AVaultFileIsRestoredToAFreePlaceOnly) {
    const FilePath destination = app.home / "restored";
    app.run(app.model->restoreVaultEntry(entry, destination));
    EXPECT_EQ(contentOf(destination), "SECRET=1\n");
    EXPECT_THAT(state().vaultEntries.get(), ElementsAre(entry));
    EXPECT_ANY_THROW(app.run(app.model->restoreVaultEntry(entry, destination)));
    EXPECT_EQ(contentOf(destination), "SECRET=1\n");
}

TEST_F(CleanupRecords, OfARemovedEntryTheFileThatIsNoneOfTheVaultsStaysAndThatIsSaid) {
    RecoveryVaultEntry odd = entry;
    odd.storedPath = app.home.write("precious");
    const std::optional<std::string> note = app.run(app.model->removeVaultEntry(odd));
    EXPECT_EQ(note, "The entry is gone. The file that it named stays, since it is none of the vault's: " +
                        odd.storedPath.display());
    EXPECT_TRUE(std::filesystem::exists(odd.storedPath.bytes()));
    EXPECT_THAT(state().vaultEntries.get(), IsEmpty());
}

}  // namespace
}  // namespace cairnfield
