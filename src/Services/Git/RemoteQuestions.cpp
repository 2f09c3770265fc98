#include "Services/Git/RemoteQuestions.h"

#include "Services/Git/GitPorcelainParser.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace cairnfield {

namespace {

constexpr std::array<const char*, 2> baseCandidates{"main", "master"};

using Answer = std::optional<std::string>;

std::optional<std::int64_t> integerFrom(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// The two counts that git prints: what the upstream has and HEAD lacks, then the reverse.
void readCounts(std::string_view answer, RemoteTrackingState& tracking) {
    std::vector<std::int64_t> numbers;
    constexpr std::string_view blanks = " \t\r\n";
    for (std::size_t begin = answer.find_first_not_of(blanks); begin != std::string_view::npos;) {
        const std::size_t end = std::min(answer.find_first_of(blanks, begin), answer.size());
        const std::optional<std::int64_t> number = integerFrom(answer.substr(begin, end - begin));
        if (number) numbers.push_back(*number);
        begin = answer.find_first_not_of(blanks, end);
    }
    if (numbers.size() != 2) return;
    tracking.behind = numbers[0];
    tracking.ahead = numbers[1];
}

std::string withoutEvery(std::string_view part, std::string text) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
        text.erase(at, part.size());
    }
    return text;
}

/// One worktree's questions, worded as what is asked. The asking task keeps it alive.
struct Asking {
    GitCommandRunner git;
    FilePath worktree;

    Task<Answer> remoteNames() const { return ask({"remote"}); }
    Task<Answer> fetchURL(const std::string& remote) const { return ask({"remote", "get-url", remote}); }
    Task<Answer> pushURL(const std::string& remote) const {
        return ask({"remote", "get-url", "--push", remote});
    }
    Task<Answer> upstream() const {
        return ask({"rev-parse", "--abbrev-ref", "--symbolic-full-name", "@{upstream}"});
    }
    Task<Answer> behindAndAhead(const std::string& upstream) const {
        return ask({"rev-list", "--left-right", "--count", upstream + "...HEAD"});
    }
    Task<Answer> defaultBranchRef(const std::string& remote) const {
        return ask({"symbolic-ref", "--quiet", "--short", "refs/remotes/" + remote + "/HEAD"});
    }
    Task<Answer> remoteBranchesWith(const std::string& commit) const {
        return ask({"branch", "-r", "--contains", commit});
    }
    Task<Answer> commitsSince(const std::string& base) const {
        return ask({"rev-list", "--count", base + "..HEAD"});
    }
    Task<bool> refExists(const std::string& ref) const {
        return git.succeeds({"show-ref", "--verify", "--quiet", ref}, worktree, questionLimit);
    }
    Task<bool> isAncestor(const std::string& commit, const std::string& ref) const {
        return git.succeeds({"merge-base", "--is-ancestor", commit, ref}, worktree, questionLimit);
    }

private:
    Task<Answer> ask(GitArguments arguments) const {
        return git.optionalString(std::move(arguments), worktree, questionLimit);
    }
};

/// The first base branch that exists under the prefix, without it.
Task<Answer> firstBase(const Asking& asking, std::string prefix) {
    for (const char* candidate : baseCandidates) {
        const bool exists = co_await asking.refExists(prefix + candidate);
        if (exists) co_return candidate;
    }
    co_return std::nullopt;
}

Task<Answer> defaultBranch(const Asking& asking, std::string remote) {
    const Answer ref = co_await asking.defaultBranchRef(remote);
    if (ref) co_return withoutEvery(remote + "/", GitPorcelainParser::shortBranchName(*ref));
    Answer byName = co_await firstBase(asking, "refs/remotes/" + remote + "/");
    co_return byName;
}

Task<> countUniqueCommits(const Asking& asking, RemoteTrackingState& tracking) {
    if (!tracking.baseRef) co_return;
    const Answer answer = co_await asking.commitsSince(*tracking.baseRef);
    if (answer) tracking.uniqueCommitCount = integerFrom(*answer);
}

Task<> compareWithUpstream(const Asking& asking, RemoteTrackingState& tracking) {
    Answer upstream = co_await asking.upstream();
    if (!upstream) co_return;
    const Answer counts = co_await asking.behindAndAhead(*upstream);
    if (counts) readCounts(*counts, tracking);
    tracking.upstreamBranch = std::move(upstream);
}

/// Everything that needs a remote. Leaves `baseRef` absent when HEAD or the default branch is not known.
Task<> compareWithRemote(const Asking& asking, const std::optional<std::string>& head,
                         RemoteTrackingState& tracking) {
    const std::string remote = *tracking.remoteName;
    co_await compareWithUpstream(asking, tracking);
    Answer branch = co_await defaultBranch(asking, remote);
    tracking.defaultBranch = std::move(branch);
    if (!head) co_return;
    const Answer holders = co_await asking.remoteBranchesWith(*head);
    tracking.headIsRemotelyPreserved = holders.has_value();
    if (!tracking.defaultBranch) co_return;
    tracking.baseRef = remote + "/" + *tracking.defaultBranch;
    const bool isMerged = co_await asking.isAncestor(*head, *tracking.baseRef);
    tracking.reachableFromDefaultBranch = isMerged;
}

std::optional<std::string> remoteToCompareWith(const std::vector<GitRemote>& remotes) {
    if (remotes.empty()) return std::nullopt;
    const auto origin = std::ranges::find(remotes, "origin", &GitRemote::name);
    return origin != remotes.end() ? origin->name : remotes.front().name;
}

}  // namespace

Task<> readRemotes(GitCommandRunner git, Worktree& worktree) {
    const Asking asking{std::move(git), worktree.path};
    const Answer names = co_await asking.remoteNames();
    if (!names) co_return;
    for (const std::string_view name : splitDroppingEmpty(*names, '\n')) {
        GitRemote remote;
        remote.name = name;
        const Answer fetch = co_await asking.fetchURL(remote.name);
        const Answer push = co_await asking.pushURL(remote.name);
        remote.fetchURL = fetch.value_or("");
        remote.pushURL = push.value_or(remote.fetchURL);
        worktree.remotes.push_back(std::move(remote));
    }
}

Task<> readTracking(GitCommandRunner git, Worktree& worktree) {
    const Asking asking{std::move(git), worktree.path};
    RemoteTrackingState tracking;
    tracking.remoteName = remoteToCompareWith(worktree.remotes);
    if (tracking.remoteName) co_await compareWithRemote(asking, worktree.headSHA, tracking);
    if (!tracking.baseRef) {
        Answer base = co_await firstBase(asking, "refs/heads/");
        tracking.baseRef = std::move(base);
    }
    co_await countUniqueCommits(asking, tracking);
    worktree.tracking = std::move(tracking);
}

}  // namespace cairnfield
