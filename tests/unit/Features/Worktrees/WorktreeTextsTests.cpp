#include "Features/Worktrees/WorktreeTexts.h"
#include "SampleWorktrees.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

WorktreeRowText row(const Worktree& worktree, SizeKnowledge knowledge = SizeKnowledge::known) {
    return rowText(worktree, knowledge, sampleNow);
}

TEST(WorktreeRowText, TellsBranchPathVerdictActivityAndSize) {
    const WorktreeRowText text = row(worktree({.branch = "feature/login", .size = 1'500'000'000}));
    EXPECT_EQ(text.branch, "feature/login");
    EXPECT_EQ(text.path, "/code/atlas/feature/login");
    EXPECT_EQ(text.disposition, "Safe to clean");
    EXPECT_EQ(text.madeBy, "");
    EXPECT_EQ(text.pullRequest, "");
    EXPECT_EQ(text.lastActivity, "5 min. ago");
    EXPECT_EQ(text.size, "1.5 GB");
    EXPECT_EQ(text.description, "Safe to clean, 5 min. ago, 1.5 GB, /code/atlas/feature/login");
}

TEST(WorktreeRowText, NamesTheMakerOnlyOfClaudesWorktrees) {
    Worktree made = worktree({});
    made.source = WorktreeSource::claude;
    EXPECT_EQ(row(made).madeBy, "Claude");
    made.source = WorktreeSource::unknown;
    EXPECT_EQ(row(made).madeBy, "");
}

TEST(WorktreeRowText, NamesThePullRequestWithItsState) {
    Worktree asked = worktree({});
    asked.pullRequest = PullRequestInfo{.number = 41, .state = PullRequestState::open};
    EXPECT_EQ(row(asked).pullRequest, "PR #41 Open");
    asked.pullRequest->state = PullRequestState::draft;
    EXPECT_EQ(row(asked).pullRequest, "PR #41 Draft");
    asked.pullRequest->state = PullRequestState::merged;
    EXPECT_EQ(row(asked).pullRequest, "PR #41 Merged");
    asked.pullRequest->state = PullRequestState::closed;
    EXPECT_EQ(row(asked).pullRequest, "PR #41 Closed");
}

TEST(WorktreeRowText, SaysNeverWithoutActivity) {
    Worktree quiet = worktree({});
    quiet.lastActivity.reset();
    EXPECT_EQ(row(quiet).lastActivity, "Never");
}

TEST(WorktreeRowText, ShowsADashWhileTheSizeIsAwaitedAndZeroOtherwise) {
    EXPECT_EQ(row(worktree({}), SizeKnowledge::awaited).size, "—");
    EXPECT_EQ(row(worktree({}), SizeKnowledge::known).size, "0 kB");
}

TEST(WorktreeRowText, TellsAssistiveTechnologyTheRestInOneSentence) {
    Worktree all =
        worktree({.branch = "b", .size = 0, .safety = WorktreeSafety::openPullRequest, .isPinned = true});
    all.source = WorktreeSource::claude;
    all.pullRequest = PullRequestInfo{.number = 7, .state = PullRequestState::open};
    EXPECT_EQ(
        row(all, SizeKnowledge::awaited).description,
        "Preserved remotely, Claude, PR #7 Open, 5 min. ago, Size not measured yet, Pinned, /code/atlas/b");
}

TEST(WorktreeRowText, MakesHostileNamesSafeToLookAt) {
    Worktree hostile = worktree({.branch = "a\nb\xff"});
    EXPECT_EQ(row(hostile).branch, "a␊b\uFFFD");
    EXPECT_EQ(row(hostile).path, "/code/atlas/a␊b\uFFFD");
    hostile.branch = "<b>bold</b>";
    EXPECT_EQ(row(hostile).branch, "<b>bold</b>");
}

ProjectTotals totalsOf(std::initializer_list<Sample> samples) {
    ProjectTotals totals;
    for (const Sample& sample : samples) totals.add(worktree(sample));
    return totals;
}

TEST(ProjectHeaderText, CountsOneWorktreeInTheSingular) {
    EXPECT_EQ(projectSummary(totalsOf({{.size = 2'000'000'000, .isMain = true}})), "2 GB total, 1 worktree");
}

TEST(ProjectHeaderText, CountsSeveralInThePlural) {
    const ProjectTotals totals = totalsOf({{.size = 2'000'000'000, .isMain = true}, {.size = 500'000'000}});
    EXPECT_EQ(projectSummary(totals), "2.5 GB total, 2 worktrees");
}

TEST(ProjectHeaderText, HasNoDetailsForALoneMainWorktree) {
    EXPECT_EQ(projectDetails(totalsOf({{.safety = WorktreeSafety::mainWorktree, .isMain = true}})), "");
}

TEST(ProjectHeaderText, PutsADotBeforeEachPartThatApplies) {
    EXPECT_EQ(projectDetails(totalsOf({{.size = 1'000'000'000},
                                       {.safety = WorktreeSafety::dirtyTrackedChanges},
                                       {.safety = WorktreeSafety::manualReview}})),
              " · 3 linked · 1 GB reclaimable · 2 need attention");
    EXPECT_EQ(projectDetails(totalsOf({{.safety = WorktreeSafety::untrackedChanges}})),
              " · 1 linked · 1 need attention");
}

TEST(ProjectHeaderText, CountsNothingPinnedOrMainAsReclaimable) {
    EXPECT_EQ(projectDetails(totalsOf({{.size = 9, .isPinned = true}})), " · 1 linked");
    EXPECT_EQ(projectDetails(totalsOf({{.size = 9, .isMain = true}})), "");
}

TEST(ProgressText, CountsWhatWasMeasured) {
    EXPECT_EQ(progressText(SizingProgress{3, 41}), "Measuring 3/41");
}

TEST(ProgressText, IsAbsentWithNothingToMeasure) {
    EXPECT_EQ(progressText(std::nullopt), std::nullopt);
    EXPECT_EQ(progressText(SizingProgress{0, 0}), std::nullopt);
}

}  // namespace
}  // namespace cairnfield
