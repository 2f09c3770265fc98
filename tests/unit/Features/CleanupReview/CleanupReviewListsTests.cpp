// What the review lists: every file that it knows of, and what looks sensitive below the top.

#include "CleanupReviewFixture.h"

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class CleanupReviewLists : public CleanupReviewFixture {
protected:
    ReviewListModel& listAt(int number) { return *qobject_cast<ReviewListModel*>(review.lists().at(number)); }
    std::vector<std::string> lines(int number) {
        const ReviewListModel& shown = listAt(number);
        std::vector<std::string> texts;
        for (int row = 0; row < shown.rowCount(); ++row)
            texts.push_back(shown.data(shown.index(row), ReviewListModel::lineRole).toString().toStdString());
        return texts;
    }
    static std::string statement(const QVariantMap& files) {
        return files.value("statement").toString().toStdString();
    }
    static std::vector<std::string> lines(const QVariantMap& files) {
        std::vector<std::string> texts;
        for (const QString& line : files.value("lines").toStringList()) texts.push_back(line.toStdString());
        return texts;
    }
    void openWithNestedSecrets() {
        feature.write("src/api/.env", "API=1\n");
        feature.write("src/web/.env", "WEB=22\n");
        openToReview();
    }
};

TEST_F(CleanupReviewLists, HoldEveryPathThatTheReviewKnowsOf) {
    feature.write("kept.txt", "changed\n");
    feature.write("new/one.txt");
    feature.write("new/t\nwo.txt");
    feature.write(".env", "secret\n");
    feature.write("node_modules/x.js");
    openToReview();
    ASSERT_EQ(review.lists().size(), 3);
    EXPECT_EQ(listAt(0).title(), "1 changed file");
    EXPECT_THAT(lines(0), ElementsAre("kept.txt"));
    EXPECT_EQ(listAt(1).title(), "2 untracked files");
    EXPECT_THAT(lines(1), ElementsAre("new/one.txt", "new/t␊wo.txt"));
    EXPECT_EQ(listAt(2).title(), "2 ignored files and folders");
    EXPECT_THAT(lines(2),
                testing::UnorderedElementsAre(testing::MatchesRegex("node_modules · .* · Rebuildable"),
                                              testing::MatchesRegex("\\.env · .* · Sensitive")));
}

TEST_F(CleanupReviewLists, ForgetAReviewThatWasClosed) {
    feature.write("new.txt");
    openToReview();
    EXPECT_EQ(listAt(1).count(), 1);
    review.close();
    EXPECT_EQ(listAt(1).count(), 0);
}

TEST_F(CleanupReviewLists, AreFoldedUntilSomebodyWantsToSeeThem) {
    feature.write("new.txt");
    openToReview();
    const SignalCount changes(&listAt(1), &ReviewListModel::folded);
    EXPECT_FALSE(listAt(1).isUnfolded());
    EXPECT_EQ(listAt(1).foldedText(), "Folded");
    listAt(1).setUnfolded(true);
    listAt(1).setUnfolded(true);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(listAt(1).foldedText(), "Unfolded");
    EXPECT_FALSE(listAt(0).isUnfolded());
    review.close();
    EXPECT_FALSE(listAt(1).isUnfolded()) << "the next review begins anew";
}

TEST_F(CleanupReviewLists, AreThereWithAHundredThousandPaths) {
    list();
    Worktree worktree = app.worktreeAt(feature.path());
    worktree.status.untrackedPaths.assign(100'000, "some/where/file.txt");
    review.open(worktree);
    EXPECT_EQ(listAt(1).count(), 100'000);
    EXPECT_EQ(listAt(1).title(), "100000 untracked files");
}

TEST_F(CleanupReviewLists, NameWhatLooksSensitiveBelowTheTopAndOfferToKeepIt) {
    openWithNestedSecrets();
    EXPECT_EQ(statement(review.nested()), "2 ignored files in folders look sensitive.");
    EXPECT_THAT(lines(review.nested()), ElementsAre("• src/api/.env · 6 bytes", "• src/web/.env · 7 bytes"));
    EXPECT_TRUE(review.includeNestedInVault());
    EXPECT_EQ(statement(review.nestedThatGo()), "");
    EXPECT_THAT(lines(review.nestedThatGo()), IsEmpty());
}

TEST_F(CleanupReviewLists, KeepItUnlessThePersonSaysOtherwise) {
    openWithNestedSecrets();
    startToEnd();
    EXPECT_THAT(review.receipt()->recoveryVaultPaths, SizeIs(2));
}

TEST_F(CleanupReviewLists, SayWhatGoesWhenItIsNotKept) {
    openWithNestedSecrets();
    const SignalCount changes(&review, &CleanupReviewViewModel::nestedThatGoChanged);
    review.setIncludeNestedInVault(false);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(statement(review.nestedThatGo()),
              "Not copied to the Recovery Vault, so these files go with the worktree:");
    EXPECT_THAT(lines(review.nestedThatGo()), SizeIs(2));
    review.setIncludeSensitiveInVault(false);
    EXPECT_EQ(changes.count(), 1) << "the other switch is not about these";
    EXPECT_EQ(statement(review.nested()), "2 ignored files in folders look sensitive.");
}

TEST_F(CleanupReviewLists, OfferTheVaultAnewInEachReview) {
    openWithNestedSecrets();
    review.setIncludeNestedInVault(false);
    review.close();
    EXPECT_EQ(statement(review.nested()), "");
    open();
    EXPECT_EQ(statement(review.nested()), "") << "it is looked for anew";
    EXPECT_TRUE(review.includeNestedInVault());
}

TEST_F(CleanupReviewLists, LetNothingStartBeforeTheLookHasEnded) {
    openWithNestedSecrets();
    review.close();
    open();
    EXPECT_EQ(review.phaseName(), "checking");
    review.start();
    EXPECT_EQ(review.phaseName(), "checking");
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
}

TEST_F(CleanupReviewLists, BlockWhenWhatIsSensitiveCannotBeKnown) {
    openWithNestedSecrets();
    review.close();
    open();
    CleanupReviewStaging::answer(review, {.passed = true},
                                 {.nested = {.failure = "logs could not be looked through."}});
    EXPECT_EQ(review.phaseName(), "blocked");
    EXPECT_EQ(review.blockedMessage(), "logs could not be looked through.");
    review.start();
    EXPECT_EQ(review.phaseName(), "blocked");
}

TEST_F(CleanupReviewLists, WarnFirstWhenMostFilesAreMissing) {
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) feature.write(name);
    feature.commit("More");
    for (const char* name : {"a.txt", "b.txt", "kept.txt"}) std::filesystem::remove((feature / name).bytes());
    openToReview();
    ASSERT_THAT(review.warnings(), SizeIs(1));
    EXPECT_EQ(review.warnings().front().toStdString(),
              "3 of 5 tracked files are missing here. A cleanup preserves that as their deletion.");
    review.close();
    feature.write("a.txt");
    openToReview();
    EXPECT_THAT(review.warnings(), SizeIs(0));
}

}  // namespace
}  // namespace cairnfield
