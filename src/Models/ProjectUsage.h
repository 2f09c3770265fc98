#pragma once
// One repository with its worktrees, and how far sizing has come. Plain values, any thread.

#include "Models/Worktree.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

struct SizingProgress {
    std::int64_t completed = 0;
    std::int64_t total = 0;

    friend bool operator==(const SizingProgress&, const SizingProgress&) = default;
};

struct ProjectUsage {
    FilePath repositoryRoot;
    std::string name;
    std::vector<Worktree> worktrees;  ///< main first, then the largest

    /// Its identity: the standardized root.
    [[nodiscard]] FilePath id() const { return repositoryRoot.standardized(); }
    [[nodiscard]] std::int64_t totalBytes() const;
    [[nodiscard]] std::int64_t worktreeCount() const;
    [[nodiscard]] std::int64_t linkedWorktreeCount() const;
    [[nodiscard]] std::int64_t needsAttentionCount() const;
    /// Of linked, unpinned worktrees that are safe to clean or preserved remotely.
    [[nodiscard]] std::int64_t reclaimableBytes() const;
    [[nodiscard]] std::optional<Date> lastActivity() const;
    /// True when no worktree of the project waits for a size: each has one, save those that cannot be entered
    /// (prunable, inaccessible, or with an inspection error), which never get one.
    [[nodiscard]] bool isFullySized() const;

    /// Worktrees grouped by repository: the largest project first, equal ones by name ignoring case in the
    /// user's locale.
    [[nodiscard]] static std::vector<ProjectUsage> rollUp(const std::vector<Worktree>& worktrees);

    friend bool operator==(const ProjectUsage&, const ProjectUsage&) = default;
};

}  // namespace cairnfield
