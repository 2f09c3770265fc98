#pragma once
// How the driver prints the records of the model: with their field names as keys.

#include "Models/JSON.h"
#include "Models/ProjectUsage.h"
#include "Models/Worktree.h"
#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Cleanup/PreflightJudgement.h"
#include "Services/Cleanup/ReviewLook.h"
#include "Services/GitHub/GitHubServicing.h"

#include <vector>

namespace cairnfield {

/// With "id", "displayBranch", "safety" and "disposition" beside its fields.
[[nodiscard]] Json jsonOf(const Worktree& worktree);
[[nodiscard]] Json jsonOf(const std::vector<Worktree>& worktrees);
/// With what is worked out of its worktrees.
[[nodiscard]] Json jsonOf(const ProjectUsage& project);
[[nodiscard]] Json jsonOf(const GitHubIntegrationStatus& status);

/// Without what was seen below the top, which is the look's.
[[nodiscard]] Json jsonOf(const CleanupPlan& plan);
[[nodiscard]] Json jsonOf(const ReviewLook& look);
[[nodiscard]] Json jsonOf(const CleanupPreflightReport& report);
[[nodiscard]] Json jsonOf(const CleanupProgress& progress);

}  // namespace cairnfield
