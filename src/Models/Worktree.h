#pragma once
// Everything that one inspection learned of one worktree, and the verdict on it. A snapshot: a plain value
// that reaches for nothing outside itself and is copied freely between tasks.

#include "Models/Git.h"
#include "Models/WorktreeSafety.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// What removing an ignored entry would cost.
enum class IgnoredEntryClass { rebuildable, sensitive, unknown };

[[nodiscard]] std::string_view rawValue(IgnoredEntryClass value);
[[nodiscard]] std::string_view title(IgnoredEntryClass value);
[[nodiscard]] std::optional<IgnoredEntryClass> ignoredEntryClassFromRawValue(std::string_view text);

/// An ignored file or directory directly under the worktree's root.
struct IgnoredEntry {
    std::string name;          ///< as git listed it
    std::string relativePath;  ///< the same text; the entry's identity
    bool isDirectory = false;
    std::int64_t sizeBytes = 0;
    std::optional<Date> modifiedAt;
    IgnoredEntryClass classification = IgnoredEntryClass::unknown;

    friend bool operator==(const IgnoredEntry&, const IgnoredEntry&) = default;
};

/// Who made the worktree.
enum class WorktreeSource { claude, generic, unknown };

[[nodiscard]] std::string_view rawValue(WorktreeSource source);
[[nodiscard]] std::string_view title(WorktreeSource source);

struct Worktree {
    FilePath path;
    FilePath repositoryRoot;
    FilePath gitCommonDir;       ///< until an inspection has read it: `path` with ".git" appended
    std::string repositoryName;  ///< last component of repositoryRoot
    bool isMain = false;
    bool isBare = false;
    bool isLocked = false;
    std::optional<std::string> lockReason;
    bool isPrunable = false;
    std::optional<std::string> prunableReason;
    std::optional<std::string> branch;  ///< short name
    bool isDetached = false;
    std::optional<std::string> headSHA;
    GitStatusSummary status;
    std::optional<GitOperationInProgress> operationInProgress;
    bool submodulesDirty = false;
    std::vector<IgnoredEntry> ignoredEntries;  ///< largest first
    std::vector<GitRemote> remotes;            ///< in git's order
    RemoteTrackingState tracking;
    std::optional<PullRequestInfo> pullRequest;
    std::int64_t sizeBytes = 0;   ///< 0 until known
    bool sizeIsEstimated = true;  ///< until a full scan has finished
    std::optional<Date> lastActivity;
    WorktreeSource source = WorktreeSource::unknown;
    bool isPinned = false;  ///< the person protected it from cleanup
    WorktreeSafety safety = WorktreeSafety::manualReview;
    bool isActive = false;
    std::optional<std::string> activityReason;
    std::optional<std::string> inspectionError;

    /// Its identity: the standardized path.
    [[nodiscard]] FilePath id() const { return path.standardized(); }
    /// The branch, else "detached at {7 characters}", else "bare" or "unknown". Bytes as git gave them.
    [[nodiscard]] std::string displayBranch() const;
    [[nodiscard]] std::int64_t reclaimableBytes() const { return sizeBytes; }
    [[nodiscard]] std::vector<IgnoredEntry> sensitiveIgnoredEntries() const;
    [[nodiscard]] std::vector<IgnoredEntry> rebuildableIgnoredEntries() const;
    [[nodiscard]] std::vector<IgnoredEntry> unknownIgnoredEntries() const;

    friend bool operator==(const Worktree&, const Worktree&) = default;
};

void to_json(Json& json, const IgnoredEntry& entry);
void from_json(const Json& json, IgnoredEntry& entry);
void to_json(Json& json, const Worktree& worktree);

}  // namespace cairnfield
