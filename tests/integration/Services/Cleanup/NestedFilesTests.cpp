// What looks sensitive below the top of the worktree, through a whole cleanup; and how much of it is missing.

#include "Services/Cleanup/CleanupChoices.h"
#include "Services/Cleanup/ReviewLook.h"
#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class NestedFiles : public Cleanup {
protected:
    static constexpr std::int64_t limit = 1'000'000;

    /// As the review sheet makes it.
    CleanupPlan chosen(const CleanupChoices& choices = {.commitMessage = "Keep"}) {
        CleanupPlan made = plan();
        made.nested = lookForReview(made.worktree, limit, {}).nested;
        return applied(made, choices, false);
    }
    std::vector<std::string> keptContents(const CleanupReceipt& receipt) const {
        std::vector<std::string> contents;
        for (const FilePath& path : receipt.recoveryVaultPaths) contents.push_back(contentOf(path));
        return contents;
    }
    std::optional<MissingFiles> missing() { return missingFiles(review()); }
};

TEST_F(NestedFiles, GoToTheVaultWithThoseOfTheTop) {
    feature.write(".env", "TOP=1\n");
    feature.write("src/api/.env", "API=1\n");
    feature.write("logs/prod.key", "key\n");
    feature.write("node_modules/pkg/test.key", "published\n");
    const CleanupReceipt receipt = execute(chosen());
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_THAT(keptContents(receipt), ElementsAre("TOP=1\n", "key\n", "API=1\n"));
    EXPECT_THAT(stages(), Contains("archivingLocalFiles: 3 file(s)"));
    std::vector<std::string> paths;
    for (const RecoveryVaultEntry& entry : waitFor(services.pool, vault.entries()))
        paths.push_back(entry.relativePath.bytes());
    EXPECT_THAT(paths, ElementsAre(".env", "logs/prod.key", "src/api/.env"));
}

TEST_F(NestedFiles, GoToTheVaultWhereTheTopHoldsNothing) {
    feature.write("src/api/.env", "API=1\n");
    EXPECT_THAT(keptContents(execute(chosen())), ElementsAre("API=1\n"));
}

TEST_F(NestedFiles, StayOutOfTheVaultWhenThePersonSaysSo) {
    feature.write(".env", "TOP=1\n");
    feature.write("src/api/.env", "API=1\n");
    const CleanupPlan made = chosen({.commitMessage = "Keep", .includeNestedInVault = false});
    EXPECT_THAT(made.nested.seen, SizeIs(1)) << "what was seen is not forgotten with that";
    EXPECT_THAT(made.allFilesToArchive(), SizeIs(1));
    EXPECT_THAT(made.allFilesToArchive().front().name, ".env");
}

TEST_F(NestedFiles, StopTheRemovalWhenTheyChangeAfterTheyWereCopied) {
    feature.write("src/api/.env", "API=1\n");
    const CleanupPlan made = chosen();
    // The last command before the removal.
    commands.after("status --porcelain=v2 -z --untracked-files=all --ignored=no",
                   [this] { feature.write("src/api/.env", "API=2\n"); });
    const CleanupReceipt receipt = execute(made);
    expectIntact(receipt);
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                testing::HasSubstr("src/api/.env changed after it was copied to the Recovery Vault."));
}

TEST_F(NestedFiles, LetNothingBeginWhenTheyAreUnknown) {
    feature.write("kept.txt", "changed\n");
    CleanupPlan made = chosen();
    made.nested.failure = "logs could not be looked through.";
    const CleanupReceipt receipt = execute(made);
    expectIntact(receipt);
    EXPECT_EQ(receipt.errorSummary, "logs could not be looked through.");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_FALSE(remoteHasBranch());
    EXPECT_THAT(storedReceipts(), IsEmpty()) << "nothing was tried";
}

TEST_F(NestedFiles, AreCountedWhenMostOfTheWorktreeIsMissing) {
    EXPECT_EQ(missing(), std::nullopt);
    feature.write("kept.txt", "changed\n");
    EXPECT_EQ(missing(), std::nullopt) << "a change is no loss";
    std::filesystem::remove((feature / "kept.txt").bytes());
    EXPECT_EQ(missing(), (MissingFiles{1, 3}));
    EXPECT_FALSE(missing()->areMost());
    feature.git({"rm", "--quiet", "second.txt"});
    EXPECT_EQ(missing(), (MissingFiles{2, 3})) << "a staged deletion counts as well";
    EXPECT_TRUE(missing()->areMost());
}

TEST_F(NestedFiles, OfWhatASparseCheckoutLeavesOutNothingIsMissing) {
    feature.git({"sparse-checkout", "set", "--no-cone", "/kept.txt", "/.gitignore"});
    ASSERT_FALSE(isThere(feature / "second.txt"));
    EXPECT_EQ(missing(), std::nullopt);
    std::filesystem::remove((feature / "kept.txt").bytes());
    EXPECT_EQ(missing(), (MissingFiles{1, 2}));
}

TEST(MissingFiles, AreMostAboveAHalf) {
    EXPECT_FALSE((MissingFiles{1, 2}.areMost()));
    EXPECT_TRUE((MissingFiles{2, 3}.areMost()));
    EXPECT_FALSE((MissingFiles{1, 3}.areMost()));
    EXPECT_TRUE((MissingFiles{1, 1}.areMost()));
    EXPECT_FALSE((MissingFiles{}.areMost()));
}

}  // namespace
}  // namespace cairnfield
