#include "Services/Git/GitPorcelainParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cairnfield;
using namespace cairnfield::GitPorcelainParser;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The text with every "|" as a NUL.
std::string nuls(std::string text) {
    for (char& character : text) {
        if (character == '|') character = '\0';
    }
    return text;
}

const std::string ordinary = "1 .M N... 100644 100644 100644 1111111 2222222 ";
const std::string renamed = "2 R. N... 100644 100644 100644 1111111 2222222 R100 ";
const std::string unmerged = "u UU N... 100644 100644 100644 100644 1111111 2222222 3333333 ";

/// Names that a careless reader takes apart.
const std::vector<std::string> hostileNames{"two words",    " leading and trailing ",
                                            "new\nline",    "\"quoted\"",
                                            "-n",           "--porcelain",
                                            "# header",     "? question",
                                            "\xFF\xFE",     "caf\xC3\xA9",
                                            "a\tb",         "back\\slash",
                                            "1 .M N... ",   "worktree /elsewhere",
                                            "\xE2\x80\xAE", "$(id)"};

}  // namespace

TEST(SplitNulTerminated, KeepsEmptyPiecesButMakesUpNoneAtTheEnd) {
    EXPECT_THAT(splitNulTerminated(""), IsEmpty());
    EXPECT_THAT(splitNulTerminated(nuls("a|b|")), ElementsAre("a", "b"));
    EXPECT_THAT(splitNulTerminated(nuls("a||b|")), ElementsAre("a", "", "b"));
    EXPECT_THAT(splitNulTerminated(nuls("a|b||")), ElementsAre("a", "b", ""));
    EXPECT_THAT(splitNulTerminated(nuls("|")), ElementsAre(""));
    EXPECT_THAT(splitNulTerminated(nuls("||")), ElementsAre("", ""));
}

TEST(SplitNulTerminated, AddsARemainderThatIsNotEmpty) {
    EXPECT_THAT(splitNulTerminated(nuls("a|rest")), ElementsAre("a", "rest"));
    EXPECT_THAT(splitNulTerminated("rest"), ElementsAre("rest"));
}

TEST(SplitNulTerminated, KeepsTheBytes) {
    EXPECT_THAT(splitNulTerminated(nuls("\xFF\n|")), ElementsAre("\xFF\n"));
}

TEST(ShortBranchName, DropsOnePrefix) {
    EXPECT_EQ(shortBranchName("refs/heads/feature/x"), "feature/x");
    EXPECT_EQ(shortBranchName("refs/remotes/origin/main"), "origin/main");
    EXPECT_EQ(shortBranchName("refs/tags/v1"), "refs/tags/v1");
    EXPECT_EQ(shortBranchName("main"), "main");
    EXPECT_EQ(shortBranchName("refs/heads/refs/heads/x"), "refs/heads/x");
    EXPECT_EQ(shortBranchName("refs/heads/refs/remotes/x"), "refs/remotes/x");
    EXPECT_EQ(shortBranchName(""), "");
}

TEST(ParseWorktreeList, ReadsEveryAttribute) {
    const std::vector<GitWorktreeEntry> entries =
        parseWorktreeList(nuls("worktree /repo|HEAD aaaa|branch refs/heads/main||"
                               "worktree /linked|HEAD bbbb|detached|locked on a stick|prunable gitdir file "
                               "points to non-existent location||"
                               "worktree /bare|bare||"));
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0], (GitWorktreeEntry{
                              .path = FilePath("/repo"), .head = "aaaa", .branch = "main", .isMain = true}));
    EXPECT_EQ(entries[1],
              (GitWorktreeEntry{.path = FilePath("/linked"),
                                .head = "bbbb",
                                .isDetached = true,
                                .isLocked = true,
                                .lockReason = "on a stick",
                                .isPrunable = true,
                                .prunableReason = "gitdir file points to non-existent location"}));
    EXPECT_EQ(entries[2], (GitWorktreeEntry{.path = FilePath("/bare"), .isBare = true}));
}

TEST(ParseWorktreeList, GivesNoReasonWhereNoneIs) {
    const std::vector<GitWorktreeEntry> entries =
        parseWorktreeList(nuls("worktree /a|locked|prunable||worktree /b|locked ||"));
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_TRUE(entries[0].isLocked);
    EXPECT_EQ(entries[0].lockReason, std::nullopt);
    EXPECT_TRUE(entries[0].isPrunable);
    EXPECT_EQ(entries[0].prunableReason, std::nullopt);
    EXPECT_TRUE(entries[1].isLocked);
    EXPECT_EQ(entries[1].lockReason, std::nullopt);
}

TEST(ParseWorktreeList, KeepsHostilePathsAndReasonsWhole) {
    for (const std::string& name : hostileNames) {
        const std::string path = "/repo/" + name;
        const std::vector<GitWorktreeEntry> entries =
            parseWorktreeList(nuls("worktree " + path + "|locked " + name + "||"));
        ASSERT_EQ(entries.size(), 1U) << name;
        EXPECT_EQ(entries[0].path.bytes(), path);
        EXPECT_EQ(entries[0].lockReason, name);
    }
}

TEST(ParseWorktreeList, YieldsALastEntryThatNothingEnds) {
    EXPECT_EQ(parseWorktreeList(nuls("worktree /a||worktree /b|HEAD cc")).size(), 2U);
    EXPECT_EQ(parseWorktreeList(nuls("worktree /a|HEAD cc|")).at(0).head, "cc");
    EXPECT_EQ(parseWorktreeList("worktree /a").at(0).path, FilePath("/a"));
}

TEST(ParseWorktreeList, BeginsAnEntryAtEachWorktreeEvenWithoutAnEmptyPiece) {
    const std::vector<GitWorktreeEntry> entries =
        parseWorktreeList(nuls("worktree /a|HEAD aa|worktree /b|bare|"));
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].head, "aa");
    EXPECT_FALSE(entries[0].isBare);
    EXPECT_TRUE(entries[1].isBare);
}

TEST(ParseWorktreeList, CallsTheFirstEntryMainAndNoOther) {
    const std::vector<GitWorktreeEntry> entries =
        parseWorktreeList(nuls("worktree /a||worktree /b||worktree /c||"));
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_TRUE(entries[0].isMain);
    EXPECT_FALSE(entries[1].isMain);
    EXPECT_FALSE(entries[2].isMain);
}

TEST(ParseWorktreeList, YieldsNothingForEmptyInput) {
    EXPECT_THAT(parseWorktreeList(""), IsEmpty());
    EXPECT_THAT(parseWorktreeList(nuls("|||")), IsEmpty());
}

TEST(ParseWorktreeList, IgnoresWhatItDoesNotKnow) {
    const std::vector<GitWorktreeEntry> entries = parseWorktreeList(
        nuls("HEAD early|locked early||worktree /a|novelty x|head lower|Bare|lockedx||HEAD late|bare||"));
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0], (GitWorktreeEntry{.path = FilePath("/a"), .isMain = true}));
}

TEST(ParseWorktreeList, DoesNotCheckThatBranchAndDetachedExcludeEachOther) {
    const std::vector<GitWorktreeEntry> entries =
        parseWorktreeList(nuls("worktree /a|branch refs/heads/x|detached||"));
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].branch, "x");
    EXPECT_TRUE(entries[0].isDetached);
}

TEST(ParseStatus, ReadsNothingAsClean) {
    EXPECT_EQ(parseStatus(""), GitStatusSummary{});
    EXPECT_EQ(parseStatus(nuls("||")), GitStatusSummary{});
}

TEST(ParseStatus, CountsStagedAndChangedApart) {
    const GitStatusSummary summary =
        parseStatus(nuls("1 M. N... 1 1 1 a b staged|"
                         "1 .M N... 1 1 1 a b changed|"
                         "1 MM N... 1 1 1 a b both|"
                         "1 .. N... 1 1 1 a b neither|"));
    EXPECT_EQ(summary.stagedCount, 2);
    EXPECT_EQ(summary.modifiedCount, 2);
    EXPECT_THAT(summary.changedPaths, ElementsAre("staged", "changed", "both", "neither"));
}

TEST(ParseStatus, TakesAMissingLetterForUnchanged) {
    const GitStatusSummary summary = parseStatus(nuls("1 M N... 1 1 1 a b one|1  N... 1 1 1 a b none|"));
    EXPECT_EQ(summary.stagedCount, 1);
    EXPECT_EQ(summary.modifiedCount, 0);
    EXPECT_THAT(summary.changedPaths, ElementsAre("one", "none"));
}

TEST(ParseStatus, CountsUnmergedPathsAsConflictsAlone) {
    const GitStatusSummary summary = parseStatus(nuls(unmerged + "torn file|"));
    EXPECT_EQ(summary.conflictedCount, 1);
    EXPECT_EQ(summary.stagedCount, 0);
    EXPECT_EQ(summary.modifiedCount, 0);
    EXPECT_THAT(summary.changedPaths, ElementsAre("torn file"));
    EXPECT_TRUE(summary.hasConflicts());
}

TEST(ParseStatus, KeepsIgnoredPathsWithoutCountingThem) {
    const GitStatusSummary summary = parseStatus(nuls("! build/|! .env|? notes|"));
    EXPECT_THAT(summary.ignoredPaths, ElementsAre("build/", ".env"));
    EXPECT_THAT(summary.untrackedPaths, ElementsAre("notes"));
    EXPECT_EQ(summary.untrackedCount, 1);
    EXPECT_THAT(summary.changedPaths, IsEmpty());
}

TEST(ParseStatus, CarriesHostileNamesInEveryRecord) {
    for (const std::string& name : hostileNames) {
        const GitStatusSummary summary =
            parseStatus(nuls(ordinary + name + "|" + renamed + name + "|" + name + "|" + unmerged + name +
                             "|? " + name + "|! " + name + "|"));
        EXPECT_THAT(summary.changedPaths, ElementsAre(name, name, name));
        EXPECT_THAT(summary.untrackedPaths, ElementsAre(name));
        EXPECT_THAT(summary.ignoredPaths, ElementsAre(name));
        EXPECT_EQ(summary.stagedCount, 1) << name;
        EXPECT_EQ(summary.modifiedCount, 1) << name;
        EXPECT_EQ(summary.conflictedCount, 1) << name;
        EXPECT_EQ(summary.untrackedCount, 1) << name;
    }
}

TEST(ParseStatus, SkipsTheSourceOfARenameWhateverItLooksLike) {
    for (const std::string& source :
         {std::string("? untracked"), std::string("# header"), ordinary + "other", std::string()}) {
        const GitStatusSummary summary = parseStatus(nuls(renamed + "to|" + source + "|? real|"));
        EXPECT_THAT(summary.changedPaths, ElementsAre("to")) << source;
        EXPECT_THAT(summary.untrackedPaths, ElementsAre("real")) << source;
        EXPECT_EQ(summary.stagedCount, 1) << source;
        EXPECT_EQ(summary.untrackedCount, 1) << source;
    }
}

TEST(ParseStatus, SkipsNothingAfterARenameThatIsTooShort) {
    const GitStatusSummary summary = parseStatus(nuls("2 R. N... 1 1 1 a b R100|? next|"));
    EXPECT_THAT(summary.changedPaths, IsEmpty());
    EXPECT_EQ(summary.stagedCount, 0);
    EXPECT_THAT(summary.untrackedPaths, ElementsAre("next"));
}

TEST(ParseStatus, BearsARenameAtTheVeryEnd) {
    EXPECT_THAT(parseStatus(nuls(renamed + "to|")).changedPaths, ElementsAre("to"));
}

TEST(ParseStatus, IgnoresShortAndUnknownRecords) {
    const GitStatusSummary summary =
        parseStatus(nuls("1 .M N... 1 1 1 a b|1|u UU N... 1 1 1 1 a b c|u|2|# branch.oid aaaa|x new kind|"));
    EXPECT_EQ(summary, GitStatusSummary{});
}

TEST(ParseStatus, KeepsEmptyFields) {
    // Two blanks in a row enclose a field: without it the path would begin one field too late.
    EXPECT_THAT(parseStatus(nuls("1 .M N...  1 1 a b path|")).changedPaths, ElementsAre("path"));
    EXPECT_THAT(parseStatus(nuls("1 .M N... 1 1 1 a b |")).changedPaths, ElementsAre(""));
}

TEST(ParseStatus, BearsAMarkWithoutAPath) {
    const GitStatusSummary summary = parseStatus(nuls("?|! |"));
    EXPECT_EQ(summary.untrackedCount, 1);
    EXPECT_THAT(summary.untrackedPaths, ElementsAre(""));
    EXPECT_THAT(summary.ignoredPaths, ElementsAre(""));
}

TEST(ParseStatus, KeepsTensOfThousandsOfPaths) {
    std::string output;
    for (int i = 0; i < 50'000; ++i) output += "? file " + std::to_string(i) + '\0';
    const GitStatusSummary summary = parseStatus(output);
    EXPECT_EQ(summary.untrackedCount, 50'000);
    EXPECT_EQ(summary.untrackedPaths.size(), 50'000U);
    EXPECT_EQ(summary.untrackedPaths.back(), "file 49999");
}

TEST(SubmodulesNeedReview, LooksAtTheFirstCharacterOfEachLine) {
    EXPECT_TRUE(submodulesNeedReview("+aaaa lib (v1-1-gaaaa)\n"));
    EXPECT_TRUE(submodulesNeedReview("Uaaaa lib\n"));
    EXPECT_TRUE(submodulesNeedReview(" aaaa one (v1)\n-bbbb two\n\n+cccc three"));
    EXPECT_FALSE(submodulesNeedReview(" aaaa lib (v1)\n-bbbb other\n"));
    EXPECT_FALSE(submodulesNeedReview(" aaaa lib+U (v1+2)\n"));
    EXPECT_FALSE(submodulesNeedReview("uaaaa lib\n"));
    EXPECT_FALSE(submodulesNeedReview(""));
    EXPECT_FALSE(submodulesNeedReview("\n\n"));
}
