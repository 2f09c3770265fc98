#pragma once
// Ignored files below the top of a worktree that look sensitive: an ".env" in one of many packages, whatever
// lies in an ignored "secrets". An inspection tells of the top alone, so the review looks for these beside
// it, and what it found travels with the plan.
//
// The look goes by the paths that git listed as ignored at the inspection. It reads names and, of the files
// that it reports, sizes and times; it follows no link, enters no other file system, starts no process and
// writes nothing. Blocking, any thread; made for worktrees with 100,000 ignored files.

#include "Models/Worktree.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace cairnfield {

struct NestedSensitiveFiles {
    /// Whether this comes from a look: every look is told the vault's limit.
    [[nodiscard]] bool wereLookedFor() const { return maximumFileBytes > 0; }

    /// Every one, in the order of the paths. An entry's name is its whole path here; its size is the length
    /// of the file, or of a link itself. Pipes, sockets and devices hold nothing and are left out.
    std::vector<IgnoredEntry> seen;
    std::vector<IgnoredEntry> toArchive;  ///< of these, what goes to the vault
    std::int64_t maximumFileBytes = 0;    ///< what is longer, the vault does not take
    /// What could not be looked through, as a sentence. Then `seen` is not all, and nothing may be removed.
    std::optional<std::string> failure;

    [[nodiscard]] bool isWithinLimit(const IgnoredEntry& file) const {
        return file.sizeBytes <= maximumFileBytes;
    }
    /// Of those seen, what the vault takes.
    [[nodiscard]] std::vector<IgnoredEntry> withinLimit() const;

    friend bool operator==(const NestedSensitiveFiles&, const NestedSensitiveFiles&) = default;
};

/// Looks through what is on disk now. Nothing is chosen for the vault yet. Throws Cancelled soon after `stop`
/// is requested; every other failure is told in the answer.
[[nodiscard]] NestedSensitiveFiles lookForNestedSensitiveFiles(const Worktree& reviewed,
                                                               std::int64_t maximumFileBytes,
                                                               const std::stop_token& stop);

}  // namespace cairnfield
