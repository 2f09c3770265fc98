#include "Services/Cleanup/ReviewedHead.h"

#include "Services/Git/WorktreeGitFiles.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"

#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds questionLimit{20};
constexpr std::size_t shortLength = 7;

/// Absent for an unborn branch, which some of git's lists show as zeros.
std::optional<std::string> commitOf(const Worktree& reviewed) {
    const std::optional<std::string>& head = reviewed.headSHA;
    if (!head || head->find_first_not_of('0') == std::string::npos) return std::nullopt;
    return head;
}

HeadOnDisk headAt(const FilePath& worktree) {
    const std::optional<WorktreeGitFiles> files = gitFilesOf(worktree);
    return files ? headOnDisk(*files) : HeadOnDisk{};
}

CairnfieldError refusal(const std::string& command, std::int32_t exitCode, const std::string& branch,
                        const std::string& commit) {
    const std::string words = "The branch " + branch + " does not hold the reviewed commit " +
                              commit.substr(0, shortLength) + ". Review the worktree again.";
    return CairnfieldError(CairnfieldError::CommandFailed{command, exitCode, words});
}

}  // namespace

Task<> ReviewedHead::assertContained(std::string revision, std::string branch) {
    const std::optional<std::string> commit = commitOf(reviewed_);
    if (!commit) co_return;
    const GitArguments question{"merge-base", "--is-ancestor", *commit, revision};
    const CommandResult result = co_await git_.run(question, reviewed_.path, questionLimit);
    if (!result.succeeded()) throw refusal("git merge-base", result.exitCode, branch, *commit);
}

Task<> ReviewedHead::assertHeldBy(std::string branch) {
    co_await assertContained("refs/heads/" + branch, branch);
}

Task<> ReviewedHead::assertHeldByHead(std::string branch) {
    const std::optional<std::string> commit = commitOf(reviewed_);
    if (!commit) co_return;
    const auto look = [this] { return headAt(reviewed_.path); };
    const HeadOnDisk head = co_await runOn(blocking_, look);
    switch (head.form) {
        case HeadOnDisk::Form::commit:
            if (head.commit != *commit) co_await assertContained(head.commit, std::move(branch));
            co_return;
        case HeadOnDisk::Form::keptElsewhere:
            co_await assertContained("HEAD", std::move(branch));
            co_return;
        case HeadOnDisk::Form::unborn:
        case HeadOnDisk::Form::unreadable:
            throw refusal("git switch", 0, branch, *commit);
    }
}

}  // namespace cairnfield
