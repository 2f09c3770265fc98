#include "Services/Cleanup/CommittedPaths.h"

#include "Services/Cleanup/GitIndexFile.h"
#include "Services/Cleanup/PathPresence.h"
#include "Services/Git/GitPorcelainParser.h"
#include "Services/Git/WorktreeGitFiles.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace cairnfield {

namespace {

using Paths = std::vector<std::string>;
using Names = std::unordered_set<std::string>;

constexpr std::chrono::seconds questionLimit{60};

/// The paths in the index, as far as its file is understood: none otherwise, so that git will be asked.
Names namesInIndex(const FilePath& worktree, const std::optional<std::string>& head) {
    Names names;
    const std::optional<WorktreeGitFiles> files = gitFilesOf(worktree);
    if (!files) return names;
    const std::size_t objectBytes = head && head->size() == 64 ? 32 : 20;
    std::optional<std::vector<GitIndexEntry>> entries = readGitIndex(files->own, objectBytes);
    if (!entries) return names;
    for (GitIndexEntry& entry : *entries) names.insert(std::move(entry.path));
    return names;
}

/// A path may have become a directory; git names a repository inside with a slash at the end.
bool isHeld(const Names& names, const std::string& path, PathPresence presence) {
    if (names.contains(path)) return true;
    if (presence != PathPresence::directory) return false;
    const std::string directory = path.ends_with('/') ? path : path + '/';
    return names.contains(directory.substr(0, directory.size() - 1)) ||
           std::ranges::any_of(names, [&](const std::string& name) { return name.starts_with(directory); });
}

Paths onDiskButNotIn(const Names& names, const FilePath& worktree, Paths paths) {
    std::erase_if(paths, [&](const std::string& path) {
        if (names.contains(path)) return true;
        const PathPresence presence = presenceOf(worktree.appending(path));
        return presence == PathPresence::absent || isHeld(names, path, presence);
    });
    return paths;
}

std::string namesOf(const Paths& paths) {
    const std::string first = FilePath(paths.front()).display();
    return paths.size() == 1 ? first : first + " and " + std::to_string(paths.size() - 1) + " more file(s)";
}

}  // namespace

Task<> CommittedPaths::assertCovered(Paths paths, std::optional<std::string> head) {
    const auto look = [&] { return onDiskButNotIn(namesInIndex(worktree_, head), worktree_, paths); };
    Paths missing = co_await runOn(blocking_, look);
    if (!missing.empty()) co_await assertSeen(std::move(missing));
}

Task<> CommittedPaths::assertSeen(Paths paths) {
    const GitArguments tracked{"ls-files", "-z"};
    const CommandResult index = co_await git_.runChecked(tracked, worktree_, questionLimit);
    const GitArguments question{"status", "--porcelain=v2", "-z", "--untracked-files=all", "--ignored=no"};
    const CommandResult answer = co_await git_.runChecked(question, worktree_, questionLimit);

    Names seen;
    for (const std::string_view name : GitPorcelainParser::splitNulTerminated(index.standardOutput))
        seen.emplace(name);
    const GitStatusSummary status = GitPorcelainParser::parseStatus(answer.standardOutput);
    seen.insert(status.changedPaths.begin(), status.changedPaths.end());
    seen.insert(status.untrackedPaths.begin(), status.untrackedPaths.end());
    const auto look = [&] { return onDiskButNotIn(seen, worktree_, paths); };
    const Paths unseen = co_await runOn(blocking_, look);
    if (unseen.empty()) co_return;
    throw CairnfieldError(CairnfieldError::CommandFailed{
        "git commit", 0, namesOf(unseen) + ": to be committed, but in no commit and no longer seen by Git."});
}

}  // namespace cairnfield
