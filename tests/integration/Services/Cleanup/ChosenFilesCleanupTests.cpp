// Local files that were chosen for the vault and come and go while the cleanup runs.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::IsEmpty;

constexpr const char* lastStatus = "status --porcelain=v2 -z --untracked-files=all --ignored=no";
constexpr const char* wasAway =
    "The Recovery Vault could not store the files. .env was not there when the others were copied.";

class ChosenFile : public Cleanup {
protected:
    ChosenFile() {
        feature.write(".env", "SECRET=1\n");
        feature.write("kept.txt", "changed\n");
    }
    void takeAway() const { std::filesystem::remove((feature / ".env").bytes()); }
};

TEST_F(ChosenFile, ThatIsBackBeforeTheRemovalStays) {
    commands.after("push", [this] { takeAway(); });
    commands.before(lastStatus, [this] { feature.write(".env", "SECRET=2\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, wasAway);
    EXPECT_THAT(receipt.recoveryVaultPaths, IsEmpty());
    EXPECT_EQ(contentOf(feature / ".env"), "SECRET=2\n");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    expectIntact(receipt);
}

TEST_F(ChosenFile, ThatIsBackBesideOneThatWasCopiedStays) {
    feature.write("app.key", "secret\n");
    commands.after("push", [this] { takeAway(); });
    commands.before(lastStatus, [this] { feature.write(".env", "SECRET=2\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, wasAway);
    EXPECT_EQ(receipt.recoveryVaultPaths.size(), 1);
    EXPECT_EQ(contentOf(feature / ".env"), "SECRET=2\n");
    expectIntact(receipt);
}

TEST_F(ChosenFile, ThatIsGoneForGoodIsPassedOver) {
    commands.after("push", [this] { takeAway(); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_THAT(receipt.recoveryVaultPaths, IsEmpty());
}

TEST_F(ChosenFile, ThatWasNotChosenIsNotAskedFor) {
    CleanupPlan made = plan();
    made.filesToArchive.clear();
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
}

}  // namespace
}  // namespace cairnfield
