#include "Shared/Errors/CairnfieldError.h"

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Text/Text.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <system_error>

namespace cairnfield {

namespace {

using E = CairnfieldError;

constexpr std::string_view retryElsewhere = "Open the repository in Terminal and check its state.";
constexpr std::string_view removeStaleEntry = "Remove the stale entry or pick the folder again.";

std::string shortened(const std::string& sha) {
    return sha.substr(0, 7);
}

/// What happened, with the values as they stand.
struct Description {
    std::string operator()(const E::GitHubCLINotAuthenticated& e) const {
        return fmt::format("The GitHub CLI is not signed in to {}.", e.host);
    }
    std::string operator()(const E::UnsupportedRemote& e) const {
        return fmt::format("This repository uses a remote Cairnfield cannot work with: {}", e.url);
    }
    std::string operator()(const E::PermissionDenied& e) const {
        return fmt::format("Cairnfield is not allowed to read {}.", e.path);
    }
    std::string operator()(const E::PathMissing& e) const {
        return fmt::format("{} no longer exists.", e.path);
    }
    std::string operator()(const E::StalePath& e) const {
        return fmt::format("{} moved or was deleted since the last scan.", e.path);
    }
    std::string operator()(const E::CommandTimedOut& e) const {
        return fmt::format("{} did not finish within {:.0f} seconds.", e.command,
                           std::trunc(e.seconds) + 0.0);
    }
    std::string operator()(const E::CommandFailed& e) const {
        return fmt::format("{} failed with exit code {}. {}", e.command, e.exitCode, e.message);
    }
    std::string operator()(const E::RepositoryUnreadable& e) const {
        return fmt::format("The Git repository at {} could not be read. {}", e.path, e.message);
    }
    std::string operator()(const E::WorktreeLocked& e) const {
        if (!e.reason || e.reason->empty()) return fmt::format("The worktree at {} is locked.", e.path);
        return fmt::format("The worktree at {} is locked: {}", e.path, *e.reason);
    }
    std::string operator()(const E::WorktreeActive& e) const {
        return fmt::format("The worktree at {} looks active. {}", e.path, e.reason);
    }
    std::string operator()(const E::WorktreeChangedAfterReview& e) const {
        return fmt::format("The worktree at {} changed after you reviewed it.", e.path);
    }
    std::string operator()(const E::UnresolvedConflicts& e) const {
        return fmt::format("The worktree at {} has unresolved merge conflicts.", e.path);
    }
    std::string operator()(const E::OperationInProgress& e) const {
        return fmt::format("A {} is in progress at {}.", e.operation, e.path);
    }
    std::string operator()(const E::CommitHookFailed& e) const {
        return fmt::format("A commit hook stopped the preservation commit. {}", e.message);
    }
    std::string operator()(const E::CommitSigningFailed& e) const {
        return fmt::format("Commit signing failed. {}", e.message);
    }
    std::string operator()(const E::PushRejected& e) const {
        return fmt::format("The push was rejected. {}", e.message);
    }
    std::string operator()(const E::RemoteBranchCollision& e) const {
        return fmt::format("The remote branch {} points at {} but the local commit is {}.", e.branch,
                           shortened(e.remoteSHA), shortened(e.localSHA));
    }
    std::string operator()(const E::RemoteVerificationFailed& e) const {
        return fmt::format("Cairnfield could not confirm that {} exists on the remote.", e.branch);
    }
    std::string operator()(const E::PullRequestCreationFailed& e) const {
        return fmt::format("The draft pull request could not be created. {}", e.message);
    }
    std::string operator()(const E::WorktreeRemovalFailed& e) const {
        return fmt::format("Git refused to remove the worktree at {}. {}", e.path, e.message);
    }
    std::string operator()(const E::InsufficientTemporaryStorage& e) const {
        return fmt::format("Preserving local files needs {} but only {} is free.",
                           ByteFormatting::string(e.requiredBytes), ByteFormatting::string(e.availableBytes));
    }
    std::string operator()(const E::RecoveryVaultFailure& e) const {
        return fmt::format("The Recovery Vault could not store the files. {}", e.message);
    }
    std::string operator()(const E::GitNotInstalled&) const { return "Git was not found on this Mac."; }
    std::string operator()(const E::GitHubCLINotInstalled&) const {
        return "The GitHub CLI (gh) was not found.";
    }
    std::string operator()(const E::Offline&) const { return "Cairnfield could not reach the network."; }
    std::string operator()(const E::NothingToCommit&) const { return "There was nothing to preserve."; }
    std::string operator()(const E::NotificationPermissionDenied&) const {
        return "Notifications are turned off for Cairnfield.";
    }
    std::string operator()(const E::Cancelled&) const { return "The operation was cancelled."; }
};

/// What the person can do; empty where there is nothing to advise.
struct Suggestion {
    std::string operator()(const E::GitHubCLINotAuthenticated& e) const {
        return fmt::format("Run: gh auth login --hostname {}", e.host);
    }
    std::string operator()(const E::UnsupportedRemote&) const {
        return "Preservation requires a writable Git remote. You can still review this worktree manually.";
    }
    std::string operator()(const E::PermissionDenied& e) const {
        return fmt::format(
            "Grant access to {}, or remove it from Watched Folders. If it lives in a protected location, "
            "Full Disk "
            "Access is required.",
            e.path);
    }
    std::string operator()(const E::PathMissing&) const { return std::string(removeStaleEntry); }
    std::string operator()(const E::StalePath&) const { return std::string(removeStaleEntry); }
    std::string operator()(const E::CommandTimedOut&) const {
        return "Retry. If it keeps happening, the repository may be very large or the remote unreachable.";
    }
    std::string operator()(const E::CommandFailed&) const { return std::string(retryElsewhere); }
    std::string operator()(const E::RepositoryUnreadable&) const { return std::string(retryElsewhere); }
    // The placeholder is for the person to fill in.
    std::string operator()(const E::WorktreeLocked&) const {
        return "Unlock it with: git worktree unlock <path>";
    }
    std::string operator()(const E::WorktreeActive&) const {
        return "Close the editor, terminal, or agent using it and refresh.";
    }
    std::string operator()(const E::WorktreeChangedAfterReview&) const {
        return "Review the worktree again. Cairnfield stopped before touching anything.";
    }
    std::string operator()(const E::UnresolvedConflicts&) const {
        return "Resolve the conflicts, or finish the merge, then refresh.";
    }
    std::string operator()(const E::OperationInProgress&) const {
        return "Finish or abort the operation in Terminal first.";
    }
    std::string operator()(const E::CommitHookFailed&) const {
        return "Fix the hook, or commit manually. Cairnfield never bypasses hooks.";
    }
    std::string operator()(const E::CommitSigningFailed&) const {
        return "Check your signing key configuration, then retry.";
    }
    std::string operator()(const E::PushRejected&) const {
        return "Pull or choose a different recovery branch name. Cairnfield never force-pushes.";
    }
    std::string operator()(const E::RemoteBranchCollision&) const {
        return "Choose a different recovery branch name.";
    }
    std::string operator()(const E::RemoteVerificationFailed&) const {
        return "Nothing was deleted. Check network access and retry.";
    }
    std::string operator()(const E::PullRequestCreationFailed&) const {
        return "Your work is already pushed. Open the branch on GitHub and create the PR manually.";
    }
    std::string operator()(const E::WorktreeRemovalFailed& e) const {
        return fmt::format("Nothing was deleted. Inspect it manually, then run: git worktree remove {}",
                           e.path);
    }
    std::string operator()(const E::InsufficientTemporaryStorage&) const {
        return "Free some space, or deselect large local-only files.";
    }
    std::string operator()(const E::RecoveryVaultFailure&) const {
        return "Nothing was deleted. Check that Application Support is writable.";
    }
    std::string operator()(const E::GitNotInstalled&) const {
        return "Install the Xcode Command Line Tools with: xcode-select --install";
    }
    std::string operator()(const E::GitHubCLINotInstalled&) const {
        return "Install it with: brew install gh — or set a custom path in Integrations.";
    }
    std::string operator()(const E::Offline&) const {
        return "Reconnect and refresh. Local scanning keeps working offline.";
    }
    std::string operator()(const E::NothingToCommit&) const {
        return "This worktree may already be safe to clean.";
    }
    std::string operator()(const E::NotificationPermissionDenied&) const {
        return "Enable notifications in System Settings › Notifications.";
    }
    std::string operator()(const E::Cancelled&) const { return {}; }
};

/// In the order of the variant's alternatives.
constexpr std::array<std::string_view, std::variant_size_v<E::Case>> caseNames{
    "gitHubCLINotAuthenticated",
    "unsupportedRemote",
    "permissionDenied",
    "pathMissing",
    "stalePath",
    "commandTimedOut",
    "commandFailed",
    "repositoryUnreadable",
    "worktreeLocked",
    "worktreeActive",
    "worktreeChangedAfterReview",
    "unresolvedConflicts",
    "operationInProgress",
    "commitHookFailed",
    "commitSigningFailed",
    "pushRejected",
    "remoteBranchCollision",
    "remoteVerificationFailed",
    "pullRequestCreationFailed",
    "worktreeRemovalFailed",
    "insufficientTemporaryStorage",
    "recoveryVaultFailure",
    "gitNotInstalled",
    "gitHubCLINotInstalled",
    "offline",
    "nothingToCommit",
    "notificationPermissionDenied",
    "cancelled",
};

}  // namespace

CairnfieldError::CairnfieldError(Case value)
    : value_(std::move(value)), description_(repairedUTF8(std::visit(Description{}, value_))) {}

std::string_view CairnfieldError::caseName() const noexcept {
    return caseNames.at(value_.index());
}

std::optional<std::string> CairnfieldError::recoverySuggestion() const {
    if (as<Cancelled>()) return std::nullopt;
    return repairedUTF8(std::visit(Suggestion{}, value_));
}

std::string describe(const std::exception& failure) {
    if (const auto* error = dynamic_cast<const CairnfieldError*>(&failure)) return error->errorDescription();
    if (dynamic_cast<const Cancelled*>(&failure))
        return CairnfieldError(CairnfieldError::Cancelled{}).errorDescription();
    const auto* system = dynamic_cast<const std::system_error*>(&failure);
    const std::string words = repairedUTF8(system ? system->code().message() : failure.what());
    return words.empty() ? "The operation could not be completed." : words;
}

std::string describeCurrentException() {
    try {
        throw;
    } catch (const std::exception& failure) {
        return describe(failure);
    } catch (...) {
        return "The operation could not be completed.";
    }
}

}  // namespace cairnfield
