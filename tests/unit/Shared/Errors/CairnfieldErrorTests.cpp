#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Text/Text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

namespace cairnfield {
namespace {

using E = CairnfieldError;

struct Row {
    E::Case value;
    std::string caseName;
    std::string description;
    std::string suggestion;
};

const std::vector<Row>& table() {
    static const std::vector<Row> rows{
        {E::GitHubCLINotAuthenticated{"ghe.example.org"}, "gitHubCLINotAuthenticated",
         "The GitHub CLI is not signed in to ghe.example.org.",
         "Run: gh auth login --hostname ghe.example.org"},
        {E::UnsupportedRemote{"ftp://x/y"}, "unsupportedRemote",
         "This repository uses a remote Cairnfield cannot work with: ftp://x/y",
         "Preservation requires a writable Git remote. You can still review this worktree manually."},
        {E::PermissionDenied{"/p/q"}, "permissionDenied", "Cairnfield is not allowed to read /p/q.",
         "Grant access to /p/q, or remove it from Watched Folders. If it lives in a protected location, Full "
         "Disk Access is "
         "required."},
        {E::PathMissing{"/p"}, "pathMissing", "/p no longer exists.",
         "Remove the stale entry or pick the folder again."},
        {E::StalePath{"/p"}, "stalePath", "/p moved or was deleted since the last scan.",
         "Remove the stale entry or pick the folder again."},
        {E::CommandTimedOut{"git fetch", 45.9}, "commandTimedOut",
         "git fetch did not finish within 45 seconds.",
         "Retry. If it keeps happening, the repository may be very large or the remote unreachable."},
        {E::CommandFailed{"git log", 128, "fatal: bad "}, "commandFailed",
         "git log failed with exit code 128. fatal: bad ",
         "Open the repository in Terminal and check its state."},
        {E::RepositoryUnreadable{"/r", "no HEAD"}, "repositoryUnreadable",
         "The Git repository at /r could not be read. no HEAD",
         "Open the repository in Terminal and check its state."},
        {E::WorktreeLocked{"/w", "on a USB disk"}, "worktreeLocked",
         "The worktree at /w is locked: on a USB disk", "Unlock it with: git worktree unlock <path>"},
        {E::WorktreeActive{"/w", "An editor has it open."}, "worktreeActive",
         "The worktree at /w looks active. An editor has it open.",
         "Close the editor, terminal, or agent using it and refresh."},
        {E::WorktreeChangedAfterReview{"/w"}, "worktreeChangedAfterReview",
         "The worktree at /w changed after you reviewed it.",
         "Review the worktree again. Cairnfield stopped before touching anything."},
        {E::UnresolvedConflicts{"/w"}, "unresolvedConflicts",
         "The worktree at /w has unresolved merge conflicts.",
         "Resolve the conflicts, or finish the merge, then refresh."},
        {E::OperationInProgress{"/w", "cherry-pick"}, "operationInProgress",
         "A cherry-pick is in progress at /w.", "Finish or abort the operation in Terminal first."},
        {E::CommitHookFailed{"lint"}, "commitHookFailed",
         "A commit hook stopped the preservation commit. lint",
         "Fix the hook, or commit manually. Cairnfield never bypasses hooks."},
        {E::CommitSigningFailed{"no key"}, "commitSigningFailed", "Commit signing failed. no key",
         "Check your signing key configuration, then retry."},
        {E::PushRejected{"stale"}, "pushRejected", "The push was rejected. stale",
         "Pull or choose a different recovery branch name. Cairnfield never force-pushes."},
        {E::RemoteBranchCollision{"b", "0123456789", "unknown"}, "remoteBranchCollision",
         "The remote branch b points at 0123456 but the local commit is unknown.",
         "Choose a different recovery branch name."},
        {E::RemoteVerificationFailed{"b"}, "remoteVerificationFailed",
         "Cairnfield could not confirm that b exists on the remote.",
         "Nothing was deleted. Check network access and retry."},
        {E::PullRequestCreationFailed{"422"}, "pullRequestCreationFailed",
         "The draft pull request could not be created. 422",
         "Your work is already pushed. Open the branch on GitHub and create the PR manually."},
        {E::WorktreeRemovalFailed{"/w", "dirty"}, "worktreeRemovalFailed",
         "Git refused to remove the worktree at /w. dirty",
         "Nothing was deleted. Inspect it manually, then run: git worktree remove /w"},
        {E::InsufficientTemporaryStorage{2'000'000, 1'500}, "insufficientTemporaryStorage",
         "Preserving local files needs 2 MB but only 2 kB is free.",
         "Free some space, or deselect large local-only files."},
        {E::RecoveryVaultFailure{"disk full"}, "recoveryVaultFailure",
         "The Recovery Vault could not store the files. disk full",
         "Nothing was deleted. Check that Application Support is writable."},
        {E::GitNotInstalled{}, "gitNotInstalled", "Git was not found on this Mac.",
         "Install the Xcode Command Line Tools with: xcode-select --install"},
        {E::GitHubCLINotInstalled{}, "gitHubCLINotInstalled", "The GitHub CLI (gh) was not found.",
         "Install it with: brew install gh — or set a custom path in Integrations."},
        {E::Offline{}, "offline", "Cairnfield could not reach the network.",
         "Reconnect and refresh. Local scanning keeps working offline."},
        {E::NothingToCommit{}, "nothingToCommit", "There was nothing to preserve.",
         "This worktree may already be safe to clean."},
        {E::NotificationPermissionDenied{}, "notificationPermissionDenied",
         "Notifications are turned off for Cairnfield.",
         "Enable notifications in System Settings › Notifications."},
    };
    return rows;
}

std::string descriptionOf(E::Case value) {
    return E(std::move(value)).errorDescription();
}

TEST(CairnfieldError, SaysWhatHappenedAndWhatToDo) {
    for (const Row& row : table()) {
        const E error(row.value);
        EXPECT_EQ(error.caseName(), row.caseName);
        EXPECT_EQ(error.errorDescription(), row.description);
        EXPECT_EQ(error.recoverySuggestion(), row.suggestion);
        EXPECT_STREQ(error.what(), row.description.c_str());
    }
}

TEST(CairnfieldError, AdvisesNothingAfterACancellationAlone) {
    const E error(E::Cancelled{});
    EXPECT_EQ(error.caseName(), "cancelled");
    EXPECT_EQ(error.errorDescription(), "The operation was cancelled.");
    EXPECT_EQ(error.recoverySuggestion(), std::nullopt);
}

TEST(CairnfieldError, HasARowForEachCase) {
    ASSERT_EQ(table().size() + 1, std::variant_size_v<E::Case>);
    for (std::size_t i = 0; i < table().size(); ++i) EXPECT_EQ(table()[i].value.index(), i);
}

TEST(CairnfieldError, ReadsAnEmptyLockReasonAsNone) {
    const std::string without = "The worktree at /w is locked.";
    EXPECT_EQ(descriptionOf(E::WorktreeLocked{"/w", std::nullopt}), without);
    EXPECT_EQ(descriptionOf(E::WorktreeLocked{"/w", ""}), without);
    EXPECT_EQ(descriptionOf(E::WorktreeLocked{"/w", " "}), "The worktree at /w is locked:  ");
}

TEST(CairnfieldError, ShortensCommitsToSevenCharacters) {
    EXPECT_EQ(descriptionOf(E::RemoteBranchCollision{"b", "abc", "0123456789abcdef"}),
              "The remote branch b points at abc but the local commit is 0123456.");
}

TEST(CairnfieldError, DropsTheFractionOfASecond) {
    EXPECT_EQ(descriptionOf(E::CommandTimedOut{"git", 0.9}), "git did not finish within 0 seconds.");
    EXPECT_EQ(descriptionOf(E::CommandTimedOut{"git", 120}), "git did not finish within 120 seconds.");
    EXPECT_EQ(descriptionOf(E::CommandTimedOut{"git", 1e15}),
              "git did not finish within 1000000000000000 seconds.");
    EXPECT_EQ(descriptionOf(E::CommandTimedOut{"git", -0.5}), "git did not finish within 0 seconds.");
}

TEST(CairnfieldError, ShowsANegativeByteCountAsZero) {
    EXPECT_EQ(descriptionOf(E::InsufficientTemporaryStorage{std::numeric_limits<std::int64_t>::min(), -1}),
              "Preserving local files needs " + ByteFormatting::string(0) + " but only " +
                  ByteFormatting::string(0) + " is free.");
}

TEST(CairnfieldError, AppendsMessagesWithoutTrimming) {
    EXPECT_EQ(descriptionOf(E::PushRejected{"  two\nlines \n"}), "The push was rejected.   two\nlines \n");
    EXPECT_EQ(descriptionOf(E::CommandFailed{"git", -2'147'483'648, ""}),
              "git failed with exit code -2147483648. ");
}

TEST(CairnfieldError, TakesBracesInValuesAsText) {
    EXPECT_EQ(descriptionOf(E::PathMissing{"/{}/{0}"}), "/{}/{0} no longer exists.");
}

TEST(CairnfieldError, IsEqualWhenCaseAndValuesAre) {
    EXPECT_EQ(E(E::CommandFailed{"git", 1, "a"}), E(E::CommandFailed{"git", 1, "a"}));
    EXPECT_NE(E(E::CommandFailed{"git", 1, "a"}), E(E::CommandFailed{"git", 1, "b"}));
    EXPECT_NE(E(E::PathMissing{"/p"}), E(E::StalePath{"/p"}));
    EXPECT_NE(E(E::WorktreeLocked{"/w", ""}), E(E::WorktreeLocked{"/w", std::nullopt}));
    EXPECT_EQ(E(E::Offline{}), E(E::Offline{}));
}

TEST(CairnfieldError, GivesItsValuesByCase) {
    const E error(E::PathMissing{"/p\xFF"});
    ASSERT_NE(error.as<E::PathMissing>(), nullptr);
    EXPECT_EQ(error.as<E::PathMissing>()->path, "/p\xFF") << "the bytes as they were";
    EXPECT_EQ(error.as<E::StalePath>(), nullptr);
}

TEST(CairnfieldError, IsValidTextWhateverItsValuesHold) {
    const std::string hostile = "/\xFF\xFEx\xE2\x82";
    for (const E& error :
         {E(E::PathMissing{hostile}), E(E::CommandFailed{hostile, 1, hostile}),
          E(E::RemoteBranchCollision{hostile, "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC", hostile}),
          E(E::WorktreeRemovalFailed{hostile, hostile}), E(E::PermissionDenied{hostile})}) {
        EXPECT_TRUE(isValidUTF8(error.errorDescription()));
        EXPECT_TRUE(isValidUTF8(error.recoverySuggestion().value_or("")));
    }
    EXPECT_EQ(descriptionOf(E::PathMissing{"/caf\xE9"}), "/caf\uFFFD no longer exists.");
}

TEST(Describe, WordsEveryKindOfFailure) {
    EXPECT_EQ(describe(E(E::PathMissing{"/p"})), "/p no longer exists.");
    EXPECT_EQ(describe(std::system_error(ENOSPC, std::generic_category(), "writing")),
              "No space left on device");
    EXPECT_EQ(
        describe(std::filesystem::filesystem_error("x", std::make_error_code(std::errc::permission_denied))),
        "Permission denied");
    EXPECT_EQ(describe(cairnfield::Cancelled()), "The operation was cancelled.");
    EXPECT_EQ(describe(std::runtime_error("something else")), "something else");
    EXPECT_EQ(describe(std::runtime_error("broken \xFF")), "broken \uFFFD");
    EXPECT_EQ(describe(std::runtime_error("")), "The operation could not be completed.");
}

TEST(Describe, WordsTheExceptionThatIsBeingHandled) {
    try {
        throw E(E::NothingToCommit{});
    } catch (...) {
        EXPECT_EQ(describeCurrentException(), "There was nothing to preserve.");
    }
    try {
        throw 7;
    } catch (...) {
        EXPECT_EQ(describeCurrentException(), "The operation could not be completed.");
    }
}

}  // namespace
}  // namespace cairnfield
