#include "Services/Cleanup/PullRequestText.h"
#include "Shared/Formatting/DateFormatting.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr Date now{std::chrono::seconds(1'750'000'000)};

CleanupPlan planOfFeature() {
    CleanupPlan plan;
    plan.worktree.path = FilePath("/home/robin/feature");
    plan.worktree.repositoryName = "project";
    plan.worktree.branch = "feature";
    plan.recoveryBranch = "cairnfield/recovery/project/1";
    return plan;
}

TEST(PullRequestText, TellsWhereTheWorkCameFrom) {
    EXPECT_EQ(PullRequestText::body(planOfFeature(), "main", "abc", now),
              "Cairnfield preserved this worktree before removing it locally.\n\n"
              "| Field | Value |\n| --- | --- |\n| Original branch | `feature` |\n"
              "| Recovery branch | `cairnfield/recovery/project/1` |\n| Base branch | `main` |\n"
              "| Preserved commit | `abc` |\n| Preserved on | " +
                  DateFormatting::absolute(now) +
                  " |\n| Original worktree path | `/home/robin/feature` |\n\n"
                  "This pull request is a draft so the work can be reviewed or discarded deliberately.");
}

TEST(PullRequestText, LeavesOutACommitThatIsNotKnown) {
    const std::string body = PullRequestText::body(planOfFeature(), "main", std::nullopt, now);
    EXPECT_EQ(body.find("Preserved commit"), std::string::npos);
}

TEST(PullRequestText, NamesADetachedHeadByItsCommit) {
    CleanupPlan plan = planOfFeature();
    EXPECT_EQ(PullRequestText::title(plan), "Preserve project worktree feature");
    plan.worktree.branch = std::nullopt;
    plan.worktree.isDetached = true;
    plan.worktree.headSHA = "0123456789";
    EXPECT_EQ(PullRequestText::title(plan), "Preserve project worktree detached at 0123456");
}

}  // namespace
}  // namespace cairnfield
