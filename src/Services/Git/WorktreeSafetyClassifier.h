#pragma once
// The one place where the facts of an inspection become a verdict. A pure function: the checks run from what
// must stop everything to what merely qualifies, the first that holds decides, and what is not known counts
// as unsafe.

#include "Models/Worktree.h"

namespace cairnfield::WorktreeSafetyClassifier {

/// Unknown ignored entries from this size on ask for a person.
inline constexpr std::int64_t largeIgnoredEntryBytes = 268'435'456;

/// Does not look at the worktree's present `safety`.
[[nodiscard]] WorktreeSafety classify(const Worktree& worktree);

}  // namespace cairnfield::WorktreeSafetyClassifier
