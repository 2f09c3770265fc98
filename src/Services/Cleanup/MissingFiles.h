#pragma once
// How much of a worktree's content is not there any more. A checkout that somebody emptied by hand, or that
// was copied half, is for git one with many deleted files; a cleanup would preserve it as their deletion, so
// the review says so first. Blocking, any thread; the index is read and each deleted path is asked for once.

#include "Models/Worktree.h"

#include <cstddef>
#include <optional>

namespace cairnfield {

struct MissingFiles {
    std::size_t missing = 0;
    std::size_t tracked = 0;  ///< the missing ones among them

    [[nodiscard]] bool areMost() const { return missing > tracked / 2; }

    friend bool operator==(const MissingFiles&, const MissingFiles&) = default;
};

/// Of the paths that the inspection found changed, those with nothing on disk, beside all that the index or
/// that list knows; what a sparse checkout leaves out does not count. Absent when nothing is missing, and
/// when the index cannot be read, at which the last look stops by itself.
[[nodiscard]] std::optional<MissingFiles> missingFiles(const Worktree& reviewed);

}  // namespace cairnfield
