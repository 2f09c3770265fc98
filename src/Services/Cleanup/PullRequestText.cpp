#include "Services/Cleanup/PullRequestText.h"

#include "Shared/Formatting/DateFormatting.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace cairnfield::PullRequestText {

std::string title(const CleanupPlan& plan) {
    return fmt::format("Preserve {} worktree {}", plan.worktree.repositoryName,
                       plan.worktree.displayBranch());
}

std::string body(const CleanupPlan& plan, const std::string& base,
                 const std::optional<std::string>& preservedSHA, Date now) {
    std::vector<std::string> lines{
        "Cairnfield preserved this worktree before removing it locally.",
        "",
        "| Field | Value |",
        "| --- | --- |",
        fmt::format("| Original branch | `{}` |", plan.worktree.displayBranch()),
        fmt::format("| Recovery branch | `{}` |", plan.recoveryBranch),
        fmt::format("| Base branch | `{}` |", base),
    };
    if (preservedSHA) lines.push_back(fmt::format("| Preserved commit | `{}` |", *preservedSHA));
    lines.push_back(fmt::format("| Preserved on | {} |", DateFormatting::absolute(now)));
    lines.push_back(fmt::format("| Original worktree path | `{}` |", plan.worktree.path.bytes()));
    lines.emplace_back();
    lines.emplace_back("This pull request is a draft so the work can be reviewed or discarded deliberately.");
    return fmt::format("{}", fmt::join(lines, "\n"));
}

}  // namespace cairnfield::PullRequestText
