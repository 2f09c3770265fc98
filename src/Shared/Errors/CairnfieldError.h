#pragma once
// Every failure that reaches a person, a receipt or the log travels as one of these cases. The case carries
// the values that its words need; this type alone words the message and the advice. A plain value: equal when
// case and values are, copied freely between threads, thrown and caught by value:
//
//     throw CairnfieldError(CairnfieldError::PathMissing{path.bytes()});
//
// Failures of the platform stay std::system_error; describe() words any failure.

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace cairnfield {

class CairnfieldError final : public std::exception {
public:
    // clang-format off
    struct GitHubCLINotAuthenticated { std::string host; bool operator==(const GitHubCLINotAuthenticated&) const = default; };
    struct UnsupportedRemote { std::string url; bool operator==(const UnsupportedRemote&) const = default; };
    struct PermissionDenied { std::string path; bool operator==(const PermissionDenied&) const = default; };
    struct PathMissing { std::string path; bool operator==(const PathMissing&) const = default; };
    struct StalePath { std::string path; bool operator==(const StalePath&) const = default; };
    struct CommandTimedOut { std::string command; double seconds = 0; bool operator==(const CommandTimedOut&) const = default; };
    struct CommandFailed { std::string command; std::int32_t exitCode = 0; std::string message; bool operator==(const CommandFailed&) const = default; };
    struct RepositoryUnreadable { std::string path; std::string message; bool operator==(const RepositoryUnreadable&) const = default; };
    struct WorktreeLocked { std::string path; std::optional<std::string> reason; bool operator==(const WorktreeLocked&) const = default; };
    struct WorktreeActive { std::string path; std::string reason; bool operator==(const WorktreeActive&) const = default; };
    struct WorktreeChangedAfterReview { std::string path; bool operator==(const WorktreeChangedAfterReview&) const = default; };
    struct UnresolvedConflicts { std::string path; bool operator==(const UnresolvedConflicts&) const = default; };
    struct OperationInProgress { std::string path; std::string operation; bool operator==(const OperationInProgress&) const = default; };
    struct CommitHookFailed { std::string message; bool operator==(const CommitHookFailed&) const = default; };
    struct CommitSigningFailed { std::string message; bool operator==(const CommitSigningFailed&) const = default; };
    struct PushRejected { std::string message; bool operator==(const PushRejected&) const = default; };
    struct RemoteBranchCollision { std::string branch; std::string remoteSHA; std::string localSHA; bool operator==(const RemoteBranchCollision&) const = default; };
    struct RemoteVerificationFailed { std::string branch; bool operator==(const RemoteVerificationFailed&) const = default; };
    struct PullRequestCreationFailed { std::string message; bool operator==(const PullRequestCreationFailed&) const = default; };
    struct WorktreeRemovalFailed { std::string path; std::string message; bool operator==(const WorktreeRemovalFailed&) const = default; };
    struct InsufficientTemporaryStorage { std::int64_t requiredBytes = 0; std::int64_t availableBytes = 0; bool operator==(const InsufficientTemporaryStorage&) const = default; };
    struct RecoveryVaultFailure { std::string message; bool operator==(const RecoveryVaultFailure&) const = default; };
    struct GitNotInstalled { bool operator==(const GitNotInstalled&) const = default; };
    struct GitHubCLINotInstalled { bool operator==(const GitHubCLINotInstalled&) const = default; };
    struct Offline { bool operator==(const Offline&) const = default; };
    struct NothingToCommit { bool operator==(const NothingToCommit&) const = default; };
    struct NotificationPermissionDenied { bool operator==(const NotificationPermissionDenied&) const = default; };
    struct Cancelled { bool operator==(const Cancelled&) const = default; };
    // clang-format on

    using Case =
        std::variant<GitHubCLINotAuthenticated, UnsupportedRemote, PermissionDenied, PathMissing, StalePath,
                     CommandTimedOut, CommandFailed, RepositoryUnreadable, WorktreeLocked, WorktreeActive,
                     WorktreeChangedAfterReview, UnresolvedConflicts, OperationInProgress, CommitHookFailed,
                     CommitSigningFailed, PushRejected, RemoteBranchCollision, RemoteVerificationFailed,
                     PullRequestCreationFailed, WorktreeRemovalFailed, InsufficientTemporaryStorage,
                     RecoveryVaultFailure, GitNotInstalled, GitHubCLINotInstalled, Offline, NothingToCommit,
                     NotificationPermissionDenied, Cancelled>;

    explicit CairnfieldError(Case value);

    [[nodiscard]] const Case& value() const noexcept { return value_; }
    template <class C>
    [[nodiscard]] const C* as() const noexcept {
        return std::get_if<C>(&value_);
    }

    /// The case in lower camel case, as logs and programs know it: "pathMissing".
    [[nodiscard]] std::string_view caseName() const noexcept;

    /// What happened, in plain English. Always present, valid UTF-8 whatever the values hold.
    [[nodiscard]] const std::string& errorDescription() const noexcept { return description_; }

    /// What the person can do. Absent for `Cancelled` alone.
    [[nodiscard]] std::optional<std::string> recoverySuggestion() const;

    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const CairnfieldError& a, const CairnfieldError& b) {
        return a.value_ == b.value_;
    }

private:
    Case value_;
    std::string description_;
};

/// The words for any failure: a CairnfieldError's description, the system's own message for a
/// std::system_error, the wording of `Cancelled` for a cancelled task, and what() for the rest. Never empty.
[[nodiscard]] std::string describe(const std::exception& failure);

/// The same for the exception that is being handled. Call it inside a catch block only.
[[nodiscard]] std::string describeCurrentException();

}  // namespace cairnfield
