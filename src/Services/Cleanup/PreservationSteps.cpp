#include "Services/Cleanup/PreservationSteps.h"

#include "Services/Cleanup/RemoteName.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

namespace {

using std::chrono::seconds;

constexpr seconds questionLimit{20};
constexpr seconds createLimit{60};
constexpr seconds switchLimit{30};
constexpr seconds commitLimit{180};
constexpr seconds remoteHeadLimit{60};
constexpr seconds pushLimit{180};

CairnfieldError commitFailure(const std::string& message) {
    const std::string lowercased = lowercasedASCII(message);
    const auto says = [&lowercased](std::string_view words) {
        return lowercased.find(words) != std::string::npos;
    };
    if (says("nothing to commit")) return CairnfieldError(CairnfieldError::NothingToCommit{});
    if (says("gpg") || says("signing")) return CairnfieldError(CairnfieldError::CommitSigningFailed{message});
    return CairnfieldError(CairnfieldError::CommitHookFailed{message});
}

}  // namespace

Task<> PreservationSteps::createBranch() {
    co_await goToBranch();
    co_await reviewedHead_.assertHeldByHead(plan_.recoveryBranch);
}

Task<> PreservationSteps::goToBranch() {
    const FilePath& directory = plan_.worktree.path;
    const std::string& branch = plan_.recoveryBranch;
    const GitArguments exists{"show-ref", "--verify", "--quiet", "refs/heads/" + branch};
    const bool isThere = co_await git_.succeeds(exists, directory, questionLimit);
    if (!isThere) {
        const GitArguments create{"switch", "--create", branch};
        co_await git_.runChecked(create, directory, createLimit);
        co_return;
    }
    const GitArguments present{"symbolic-ref", "--quiet", "--short", "HEAD"};
    const std::optional<std::string> current =
        co_await git_.optionalString(present, directory, questionLimit);
    if (current == branch) co_return;
    co_await reviewedHead_.assertHeldBy(branch);
    const GitArguments go{"switch", branch};
    co_await git_.runChecked(go, directory, switchLimit);
}

Task<std::vector<std::string>> PreservationSteps::stage(std::vector<std::string> paths) {
    return staging_.stage(std::move(paths));
}

Task<> PreservationSteps::assertCommitted(std::vector<std::string> paths, std::optional<std::string> head) {
    return committedPaths_.assertCovered(std::move(paths), std::move(head));
}

Task<> PreservationSteps::commit() {
    const GitArguments commit{"commit", "--message", plan_.commitMessage};
    const CommandResult result = co_await git_.run(commit, plan_.worktree.path, commitLimit);
    if (!result.succeeded()) throw commitFailure(result.standardError);
    // A hook may have rewritten what the commit was made on. A branch keeps its own commits, a detached HEAD
    // has nothing else that holds them.
    if (plan_.worktree.isDetached) co_await reviewedHead_.assertHeldByHead(plan_.recoveryBranch);
}

Task<std::optional<std::string>> PreservationSteps::head() {
    const GitArguments question{"rev-parse", "HEAD"};
    std::optional<std::string> answer =
        co_await git_.optionalString(question, plan_.worktree.path, questionLimit);
    co_return answer;
}

Task<std::optional<std::string>> PreservationSteps::remoteSHA(std::string remote, FilePath directory) {
    const GitArguments question{"ls-remote", "--heads", std::move(remote), plan_.recoveryBranch};
    const std::optional<std::string> answer =
        co_await git_.optionalString(question, std::move(directory), remoteHeadLimit);
    if (!answer) co_return std::nullopt;
    const std::vector<std::string_view> pieces = splitDroppingEmpty(*answer, '\t');
    if (pieces.empty()) co_return std::nullopt;
    co_return std::string(pieces.front());
}

Task<> PreservationSteps::push() {
    const std::string& branch = plan_.recoveryBranch;
    if (!plan_.remoteName) throw CairnfieldError(CairnfieldError::UnsupportedRemote{"none"});
    const std::string remote = *plan_.remoteName;
    if (readsAsOption(remote)) throw CairnfieldError(CairnfieldError::UnsupportedRemote{remote});

    const std::optional<std::string> local = co_await head();
    const std::optional<std::string> existing = co_await remoteSHA(remote, plan_.worktree.path);
    if (existing && existing == local) co_return;
    if (existing) {
        throw CairnfieldError(
            CairnfieldError::RemoteBranchCollision{branch, *existing, local.value_or("unknown")});
    }
    const GitArguments push{"push", "--set-upstream", remote, branch + ":" + branch};
    const CommandResult result =
        co_await git_.run(push, plan_.worktree.path, pushLimit, GitCommandRunner::UsesNetwork::yes);
    if (!result.succeeded()) throw CairnfieldError(CairnfieldError::PushRejected{result.standardError});
}

Task<std::optional<std::string>> PreservationSteps::verifyRemote(std::optional<std::string> expected,
                                                                 FilePath directory) {
    if (!plan_.remoteName) co_return std::nullopt;
    const std::string& branch = plan_.recoveryBranch;
    std::optional<std::string> actual = co_await remoteSHA(*plan_.remoteName, std::move(directory));
    if (!actual) throw CairnfieldError(CairnfieldError::RemoteVerificationFailed{branch});
    if (!expected || *actual == *expected) co_return actual;
    throw CairnfieldError(CairnfieldError::RemoteBranchCollision{branch, *actual, *expected});
}

}  // namespace cairnfield
