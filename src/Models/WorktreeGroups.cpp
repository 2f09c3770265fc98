#include "Models/WorktreeGroups.h"

namespace cairnfield {

bool isSafeOrPreserved(WorktreeSafety safety) {
    const SafetyDisposition group = disposition(safety);
    return group == SafetyDisposition::safeToClean || group == SafetyDisposition::preservedRemotely;
}

bool isReclaimable(const Worktree& worktree) {
    return !worktree.isMain && !worktree.isPinned && isSafeOrPreserved(worktree.safety);
}

bool needsAttention(const Worktree& worktree) {
    const SafetyDisposition group = disposition(worktree.safety);
    return group == SafetyDisposition::preserveFirst || group == SafetyDisposition::needsReview;
}

}  // namespace cairnfield
