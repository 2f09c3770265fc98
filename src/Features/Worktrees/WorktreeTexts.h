#pragma once
// The words of the worktree list: what a row, a section header and the progress line say. Pure functions over
// plain values, without a toolkit. Everything that comes from outside (branches, paths, names) leaves here
// safe to look at.

#include "Models/ProjectUsage.h"
#include "Models/Worktree.h"
#include "Shared/Time/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

/// Stands for a size that nobody has measured yet.
inline constexpr std::string_view unknownSizeText = "—";

/// Whether the size of a worktree is a number to show or one to wait for.
enum class SizeKnowledge { known, awaited };

/// A worktree's size, or the dash while it is awaited. A size of 0 that nobody is measuring reads as zero.
[[nodiscard]] std::string sizeText(const Worktree& worktree, SizeKnowledge knowledge);

/// "#12 Open".
[[nodiscard]] std::string numberAndState(const PullRequestInfo& pullRequest);

struct WorktreeRowText {
    std::string branch;
    std::string path;
    std::string disposition;
    std::string madeBy;       ///< "Claude" or empty
    std::string pullRequest;  ///< "PR #12 Open" or empty
    std::string lastActivity;
    std::string size;
    std::string description;  ///< all but the branch in one sentence, for assistive technology
};

[[nodiscard]] WorktreeRowText rowText(const Worktree& worktree, SizeKnowledge knowledge, Date now);

/// What a project's worktrees add up to.
struct ProjectTotals {
    std::int64_t totalBytes = 0;
    std::int64_t worktreeCount = 0;
    std::int64_t linkedWorktreeCount = 0;
    std::int64_t reclaimableBytes = 0;
    std::int64_t needsAttentionCount = 0;

    void add(const Worktree& worktree);

    friend bool operator==(const ProjectTotals&, const ProjectTotals&) = default;
};

/// "1.2 GB total, 3 worktrees".
[[nodiscard]] std::string projectSummary(const ProjectTotals& totals);

/// " · 2 linked · 1.1 GB reclaimable · 1 need attention": the parts that apply, each with its dot; empty when
/// none does.
[[nodiscard]] std::string projectDetails(const ProjectTotals& totals);

/// "Measuring 3/41"; absent without progress or with nothing to measure.
[[nodiscard]] std::optional<std::string> progressText(const std::optional<SizingProgress>& progress);

}  // namespace cairnfield
