#pragma once
// What a review looks at beside the inspection: the tree itself, for what the record of a worktree does not
// hold. Blocking, any thread.

#include "Services/Cleanup/MissingFiles.h"
#include "Services/Cleanup/NestedSensitiveFiles.h"

#include <optional>

namespace cairnfield {

struct ReviewLook {
    NestedSensitiveFiles nested;
    std::optional<MissingFiles> missing;

    friend bool operator==(const ReviewLook&, const ReviewLook&) = default;
};

/// `maximumFileBytes` is the vault's. Throws Cancelled soon after `stop` is requested.
[[nodiscard]] inline ReviewLook lookForReview(const Worktree& reviewed, std::int64_t maximumFileBytes,
                                              const std::stop_token& stop) {
    return {lookForNestedSensitiveFiles(reviewed, maximumFileBytes, stop), missingFiles(reviewed)};
}

}  // namespace cairnfield
