#include "Services/Cleanup/HeadLook.h"

#include "Shared/Text/Text.h"

namespace cairnfield {

namespace {

using Form = HeadOnDisk::Form;

/// Absent while git was not asked.
std::optional<HeadOnDisk> headByGit(const Worktree& worktree, GitAnswers& git) {
    constexpr int nothingThere = 1;
    const GitAnswer* commit = git.to({worktree.path, {"rev-parse", "--verify", "--quiet", "HEAD"}});
    const GitAnswer* branch = git.to({worktree.path, {"symbolic-ref", "--quiet", "HEAD"}});
    if (!commit || !branch) return std::nullopt;
    if (commit->exitCode == nothingThere && branch->succeeded()) return HeadOnDisk{Form::unborn, {}};
    const std::string name(trimmed(commit->output));
    if (!commit->succeeded() || name.empty()) return HeadOnDisk{Form::unreadable, {}};
    const bool goes = branch->succeeded() && belongsToOneWorktree(trimmed(branch->output));
    return HeadOnDisk{Form::commit, name, goes};
}

}  // namespace

ExpectedHead ExpectedHead::preserved(const std::optional<std::string>& commit) {
    return commit ? ExpectedHead{Form::commit, *commit} : ExpectedHead{};
}

ExpectedHead ExpectedHead::reviewed(const Worktree& worktree) {
    if (!worktree.headSHA) return {Form::unborn, {}};
    const RemoteTrackingState& tracking = worktree.tracking;
    const bool isElsewhere = tracking.headIsRemotelyPreserved || tracking.uniqueCommitCount == 0;
    return {Form::commit, *worktree.headSHA, isElsewhere};
}

std::optional<RemovalRefusal> refusalOfHead(const ExpectedHead& expected, const Worktree& worktree,
                                            const WorktreeGitFiles& files, GitAnswers& git) {
    if (expected.form == ExpectedHead::Form::anywhere) return std::nullopt;
    const RemovalRefusal moved("Its HEAD is not where it was left.");
    std::optional<HeadOnDisk> head = headOnDisk(files);
    if (head->form == Form::keptElsewhere) head = headByGit(worktree, git);
    if (!head) return std::nullopt;
    switch (head->form) {
        case Form::keptElsewhere:
        case Form::unreadable:
            return RemovalRefusal("Its HEAD could not be read.", RemovalRefusal::Kind::unreadable);
        case Form::unborn:
            if (expected.form == ExpectedHead::Form::unborn) return std::nullopt;
            return moved;
        case Form::commit:
            break;
    }
    const bool isThere = expected.form == ExpectedHead::Form::commit && head->commit == expected.commit;
    if (!isThere) return moved;
    if (!expected.isElsewhere && head->goesWithWorktree)
        return RemovalRefusal("Its commits are on a reference of its own.");
    return std::nullopt;
}

}  // namespace cairnfield
