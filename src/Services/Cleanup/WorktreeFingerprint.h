#pragma once
// The compact identity of a worktree's state: equal fingerprints mean that the state is the one reviewed. A
// plain value and pure functions, any thread.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct WorktreeFingerprint {
    std::string value;  ///< 64 lower-case hexadecimal digits

    /// SHA-256 of the whole output of `git status`, in lower-case hexadecimal digits.
    [[nodiscard]] static std::string statusDigest(std::string_view output);

    /// Of where the worktree is, what it stands on, its status and the names of its ignored entries, in
    /// whatever order those come.
    [[nodiscard]] static WorktreeFingerprint make(const FilePath& repositoryRoot,
                                                  const FilePath& worktreePath,
                                                  const std::optional<std::string>& headSHA,
                                                  const std::optional<std::string>& branch,
                                                  std::string_view statusDigest,
                                                  std::vector<std::string> ignoredSummary);

    friend bool operator==(const WorktreeFingerprint&, const WorktreeFingerprint&) = default;
};

}  // namespace cairnfield
