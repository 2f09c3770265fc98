#include "Services/Cleanup/CleanupChoices.h"

namespace cairnfield {

CleanupChoices CleanupChoices::proposed(const CleanupPlan& plan) {
    return {.createPullRequest = plan.createPullRequest, .commitMessage = plan.commitMessage};
}

CleanupPlan applied(const CleanupPlan& plan, const CleanupChoices& choices, bool isSignedIn) {
    CleanupPlan chosen = plan;
    chosen.untrackedPathsToCommit.clear();
    if (choices.includeUntracked) chosen.untrackedPathsToCommit = plan.worktree.status.untrackedPaths;
    chosen.filesToArchive.clear();
    if (choices.includeSensitiveInVault) {
        chosen.filesToArchive = plan.worktree.sensitiveIgnoredEntries();
        std::erase_if(chosen.filesToArchive, [](const IgnoredEntry& entry) { return entry.isDirectory; });
    }
    chosen.nested.toArchive.clear();
    if (choices.includeNestedInVault) chosen.nested.toArchive = plan.nested.withinLimit();
    chosen.createPullRequest = choices.createPullRequest && isSignedIn;
    chosen.commitMessage = choices.commitMessage;
    return chosen;
}

}  // namespace cairnfield
