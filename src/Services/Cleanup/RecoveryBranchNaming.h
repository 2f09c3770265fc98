#pragma once
// A safe branch name from a repository's name and a moment. Pure functions, any thread.

#include "Shared/Time/Date.h"

#include <string>
#include <string_view>

namespace cairnfield::RecoveryBranchNaming {

/// "{prefix}/{repository}/20260131-174502": the same in every time zone and locale. The prefix stands as it
/// is.
[[nodiscard]] std::string branchName(std::string_view prefix, std::string_view repository, Date date);

/// Whether both are such names, of one repository with one prefix.
[[nodiscard]] bool differInTheirMomentAlone(std::string_view branch, std::string_view other);

/// Letters, digits, "-", "_" and "." of ASCII, at most 60 of them; each run of other characters is one "-".
/// Never empty, and neither end is a "-" or "." but for what cutting it down leaves.
[[nodiscard]] std::string sanitize(std::string_view name);

}  // namespace cairnfield::RecoveryBranchNaming
