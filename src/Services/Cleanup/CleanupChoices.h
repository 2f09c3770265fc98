#pragma once
// What a person may change on the review sheet, and what it makes of the plan. Plain values and a pure
// function, any thread.

#include "Services/Cleanup/CleanupPlan.h"

#include <string>

namespace cairnfield {

struct CleanupChoices {
    bool includeUntracked = true;
    bool includeSensitiveInVault = true;
    bool createPullRequest = true;
    std::string commitMessage;
    bool includeNestedInVault = true;  ///< what looks sensitive below the top

    /// What the sheet shows before anything was changed.
    [[nodiscard]] static CleanupChoices proposed(const CleanupPlan& plan);

    friend bool operator==(const CleanupChoices&, const CleanupChoices&) = default;
};

/// The plan that is carried out. What it archives is the person's choice alone: with
/// `includeSensitiveInVault` every sensitive file of the worktree whatever its size, but no directory, and
/// without it nothing; from below the top, with `includeNestedInVault`, of the files that the plan has seen
/// those that the vault takes. `isSignedIn`: gh is, at one host at least; else there is no pull request.
[[nodiscard]] CleanupPlan applied(const CleanupPlan& plan, const CleanupChoices& choices, bool isSignedIn);

}  // namespace cairnfield
