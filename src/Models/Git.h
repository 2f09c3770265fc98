#pragma once
// What git reports of a repository and its worktrees. Plain values, any thread. Names, branches and paths are
// kept as the bytes that git gave; they are repaired where they are shown.

#include "Models/JSON.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// One record of the worktree list.
struct GitWorktreeEntry {
    FilePath path;
    std::optional<std::string> head;    ///< commit
    std::optional<std::string> branch;  ///< short name
    bool isBare = false;
    bool isDetached = false;
    bool isLocked = false;
    std::optional<std::string> lockReason;
    bool isPrunable = false;
    std::optional<std::string> prunableReason;
    bool isMain = false;

    friend bool operator==(const GitWorktreeEntry&, const GitWorktreeEntry&) = default;
};

/// The working tree's state. Paths are relative to the worktree's root.
struct GitStatusSummary {
    std::int64_t stagedCount = 0;
    std::int64_t modifiedCount = 0;
    std::int64_t untrackedCount = 0;
    std::int64_t conflictedCount = 0;
    std::vector<std::string> ignoredPaths;
    std::vector<std::string> changedPaths;
    std::vector<std::string> untrackedPaths;

    [[nodiscard]] bool isClean() const;
    [[nodiscard]] bool hasConflicts() const { return conflictedCount > 0; }

    friend bool operator==(const GitStatusSummary&, const GitStatusSummary&) = default;
};

enum class GitOperationInProgress { merge, rebase, cherryPick, revert, bisect };

/// "merge", "rebase", "cherry-pick", "revert", "bisect": raw value and name for people in one.
[[nodiscard]] std::string_view rawValue(GitOperationInProgress operation);
[[nodiscard]] inline std::string_view displayName(GitOperationInProgress operation) {
    return rawValue(operation);
}

namespace GitRemoteURL {

/// The public hosting service's host name.
inline constexpr std::string_view publicGitHubHost = "github.com";

/// The host that a remote's URL names, in URL form or in the scp-like one; absent for local paths. Not
/// lower-cased.
[[nodiscard]] std::optional<std::string> host(std::string_view url);

}  // namespace GitRemoteURL

struct GitRemote {
    std::string name;
    std::string fetchURL;
    std::string pushURL;

    [[nodiscard]] std::optional<std::string> host() const { return GitRemoteURL::host(pushURL); }
    /// The public host, a subdomain of it, or a host whose name contains "github".
    [[nodiscard]] bool isGitHub() const;

    friend bool operator==(const GitRemote&, const GitRemote&) = default;
};

/// Relation of HEAD to the remote and to the base branch, as the local remote-tracking refs tell it.
struct RemoteTrackingState {
    std::optional<std::string> remoteName;      ///< the remote that was compared against
    std::optional<std::string> upstreamBranch;  ///< in the short form that git prints
    std::int64_t ahead = 0;
    std::int64_t behind = 0;
    bool headIsRemotelyPreserved = false;     ///< some remote-tracking branch contains HEAD
    bool reachableFromDefaultBranch = false;  ///< HEAD is an ancestor of the remote default branch
    std::optional<std::string> defaultBranch;
    std::optional<std::string> baseRef;  ///< what unique commits were counted against
    std::optional<std::int64_t>
        uniqueCommitCount;  ///< commits in HEAD that baseRef lacks; absent when unknown

    friend bool operator==(const RemoteTrackingState&, const RemoteTrackingState&) = default;
};

enum class PullRequestState { open, merged, closed, draft };

[[nodiscard]] std::string_view rawValue(PullRequestState state);
[[nodiscard]] std::string_view title(PullRequestState state);
[[nodiscard]] std::optional<PullRequestState> pullRequestStateFromRawValue(std::string_view text);

struct PullRequestInfo {
    std::int64_t number = 0;
    std::string title;
    PullRequestState state = PullRequestState::open;
    bool isDraft = false;
    std::string url;
    std::string headRefName;
    std::string baseRefName;
    std::optional<Date> mergedAt;
    std::optional<Date> closedAt;

    friend bool operator==(const PullRequestInfo&, const PullRequestInfo&) = default;
};

void to_json(Json& json, const GitWorktreeEntry& entry);
void to_json(Json& json, const GitStatusSummary& summary);
void to_json(Json& json, const GitRemote& remote);
void to_json(Json& json, const RemoteTrackingState& state);
void to_json(Json& json, const PullRequestInfo& info);
void from_json(const Json& json, PullRequestInfo& info);

}  // namespace cairnfield
