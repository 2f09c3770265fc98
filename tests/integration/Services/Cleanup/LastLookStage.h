#pragma once
// The stage of the cleanups' tests, for the last look alone.

#include "integration/Services/Cleanup/CleanupStage.h"

namespace cairnfield {

class LastLook : public Cleanup {
protected:
    /// The objection's own words, without those of the error; empty when there is none.
    std::string look(const Worktree& reviewed, std::vector<FilePath> ours = {}) {
        const LastLookQuestion question{reviewed, ExpectedHead::reviewed(reviewed), {}, std::move(ours)};
        const std::optional<CairnfieldError> objection = lookBeforeRemoval(question, mounts);
        if (!objection) return {};
        const auto* refusal = objection->as<CairnfieldError::WorktreeRemovalFailed>();
        if (refusal) EXPECT_EQ(refusal->path, reviewed.path.bytes());
        return refusal ? refusal->message : "another case: " + objection->errorDescription();
    }
    std::string look() { return look(review()); }

    /// What the last look is for: git itself sees nothing wrong.
    bool gitWouldRemove() const { return project.tryGit({"worktree", "remove", feature.path().bytes()}); }
};

}  // namespace cairnfield
