#include "Services/Cleanup/EarlierRecovery.h"

#include "Services/Cleanup/RecoveryBranchNaming.h"
#include "Services/Cleanup/RemoteName.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield::EarlierRecovery {

namespace {

constexpr std::chrono::seconds remoteHeadLimit{60};
constexpr std::chrono::seconds ancestryLimit{20};

/// The commit of exactly that reference: other branches of the remote may end in the same name.
std::optional<std::string> commitOf(const std::string& reference, std::string_view answer) {
    for (const std::string_view line : splitDroppingEmpty(answer, '\n')) {
        const std::size_t tab = line.find('\t');
        if (tab != std::string_view::npos && line.substr(tab + 1) == reference)
            return std::string(line.substr(0, tab));
    }
    return std::nullopt;
}

}  // namespace

bool needsProof(const CleanupPlan& plan) {
    const Worktree& worktree = plan.worktree;
    return !plan.requiresPreservation() && plan.remoteName && worktree.branch && worktree.headSHA &&
           worktree.tracking.uniqueCommitCount != 0 &&
           RecoveryBranchNaming::differInTheirMomentAlone(*worktree.branch, plan.recoveryBranch);
}

Task<> prove(GitCommandRunner git, CleanupPlan plan) {
    const std::string branch = plan.worktree.branch.value();
    const std::string head = plan.worktree.headSHA.value();
    const std::string remote = plan.remoteName.value();
    if (readsAsOption(remote)) throw CairnfieldError(CairnfieldError::UnsupportedRemote{remote});
    const std::string reference = "refs/heads/" + branch;
    const GitArguments question{"ls-remote", "--heads", remote, reference};
    const std::optional<std::string> answer =
        co_await git.optionalString(question, plan.worktree.path, remoteHeadLimit);
    const std::optional<std::string> actual = commitOf(reference, answer.value_or(""));
    if (!actual) throw CairnfieldError(CairnfieldError::RemoteVerificationFailed{branch});
    if (*actual == head) co_return;
    const GitArguments ancestry{"merge-base", "--is-ancestor", head, *actual};
    const bool isContained = co_await git.succeeds(ancestry, plan.worktree.path, ancestryLimit);
    if (!isContained) throw CairnfieldError(CairnfieldError::RemoteBranchCollision{branch, *actual, head});
}

}  // namespace cairnfield::EarlierRecovery
