#include "Services/Cleanup/RemovalLook.h"

#include "Shared/Concurrency/RunOn.h"

#include <exception>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds questionLimit{30};
/// An answer can raise one more question; more often than that, things change as fast as they are read.
constexpr int mostRounds = 4;

Task<GitAnswer> answerOf(GitCommandRunner git, GitQuestion question) {
    try {
        CommandResult result = co_await git.run(question.arguments, question.directory, questionLimit);
        co_return GitAnswer{result.exitCode, std::move(result.standardOutput)};
    } catch (const std::exception&) {
        // No answer is an answer here: the unsafe one.
    }
    co_return GitAnswer{};
}

}  // namespace

Task<std::optional<RemovalRefusal>> RemovalLook::beforehand(Worktree fresh, bool preserves) const {
    LastLookQuestion question;
    question.head = preserves ? ExpectedHead{} : ExpectedHead::reviewed(fresh);
    question.seen.untracked = fresh.status.untrackedPaths;
    question.reviewed = std::move(fresh);
    return look(std::move(question));
}

Task<std::optional<RemovalRefusal>> RemovalLook::atTheEnd(LastLookQuestion question) const {
    return look(std::move(question));
}

Task<std::optional<RemovalRefusal>> RemovalLook::look(LastLookQuestion question) const {
    question.mustStay = {ours_};
    GitAnswers answers;
    for (int round = 0; round < mostRounds; ++round) {
        const auto once = [&] { return lookBeforeRemoval(question, *volumes_, answers); };
        const std::optional<RemovalRefusal> refusal = co_await runOn(*blocking_, once);
        const std::vector<GitQuestion> open = answers.takeOpen();
        if (refusal || open.empty()) co_return refusal;
        for (const GitQuestion& asked : open) {
            GitAnswer answer = co_await answerOf(git_, asked);
            answers.add(asked, std::move(answer));
        }
    }
    co_return RemovalRefusal("It changes faster than it can be looked at.");
}

}  // namespace cairnfield
