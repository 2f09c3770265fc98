#include "Services/Cleanup/Staging.h"

#include "Services/Cleanup/PathPresence.h"
#include "Services/Cleanup/StagedPaths.h"
#include "Services/Git/GitPorcelainParser.h"
#include "Shared/Concurrency/RunOn.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds stageLimit{120};
constexpr std::chrono::seconds questionLimit{60};

// The statuses with which `git add` ends.
constexpr std::int32_t nothingWasTaken = 128;
constexpr std::int32_t someWereNotTaken = 1;

std::int32_t statusOf(const CairnfieldError& refusal) {
    const auto* failed = refusal.as<CairnfieldError::CommandFailed>();
    return failed ? failed->exitCode : 0;
}

/// `ignored` is as git lists it: files, and directories with a slash at the end for all that is in them.
bool isAmong(const std::vector<std::string>& ignored, const std::string& path) {
    return std::ranges::any_of(ignored, [&path](const std::string& entry) {
        return path == entry || (entry.ends_with('/') && path.starts_with(entry));
    });
}

}  // namespace

Task<std::vector<std::string>> Staging::stage(Paths paths) {
    Paths toCommit;
    auto next = paths.begin();
    for (const Paths& batch : StagedPaths::batches(paths)) {
        const auto end = next + std::ptrdiff_t(batch.size());
        Paths taken = co_await stageTogether(Paths(next, end));
        toCommit.insert(toCommit.end(), std::make_move_iterator(taken.begin()),
                        std::make_move_iterator(taken.end()));
        next = end;
    }
    co_return toCommit;
}

Task<Staging::Paths> Staging::stageTogether(Paths paths) {
    std::optional<CairnfieldError> refusal = co_await refusalOf({"add", "--"}, paths);
    Paths present = paths;
    if (refusal && statusOf(*refusal) == nothingWasTaken) {
        Paths left = co_await withoutVanished(paths);
        if (left.size() == paths.size()) throw CairnfieldError(*refusal);
        if (left.empty()) co_return paths;
        std::optional<CairnfieldError> again = co_await refusalOf({"add", "--"}, left);
        refusal = std::move(again);
        present = std::move(left);
    }
    if (!refusal) co_return paths;
    if (statusOf(*refusal) != someWereNotTaken) throw CairnfieldError(*refusal);
    const PathSet left = co_await stageApart(std::move(present), *refusal);
    std::erase_if(paths, [&left](const std::string& path) { return left.contains(path); });
    co_return paths;
}

Task<Staging::PathSet> Staging::stageApart(Paths paths, CairnfieldError refusal) {
    // The command that was refused has taken what else it could, deletions among it.
    const std::size_t all = paths.size();
    Paths present = co_await withoutVanished(std::move(paths));
    if (present.empty()) co_return {};
    const std::optional<PathSet> held = co_await listed({"ls-files", "-z", "--"}, present);
    const std::optional<PathSet> ignored = co_await listed(
        {"ls-files", "-z", "--cached", "--others", "--ignored", "--exclude-standard", "--"}, present);
    if (!held || !ignored) throw CairnfieldError(refusal);

    const GitStatusSummary& reviewed = plan_.worktree.status;
    const PathSet changed(plan_.trackedPathsToCommit.begin(), plan_.trackedPathsToCommit.end());
    const PathSet untracked(reviewed.untrackedPaths.begin(), reviewed.untrackedPaths.end());
    Paths tracked;
    Paths others;
    PathSet leftToIgnored;
    bool isExplained = present.size() < all;
    for (std::string& path : present) {
        const bool wasChanged = changed.contains(path);
        if (wasChanged && held->contains(path)) {
            isExplained = isExplained || ignored->contains(path);
            tracked.push_back(std::move(path));
        } else if (wasChanged && ignored->contains(path) && !untracked.contains(path) &&
                   isAmong(reviewed.ignoredPaths, path)) {
            isExplained = true;
            leftToIgnored.insert(std::move(path));
        } else {
            others.push_back(std::move(path));
        }
    }
    if (!isExplained) throw CairnfieldError(refusal);
    if (!tracked.empty()) co_await run({"add", "--update", "--"}, std::move(tracked));
    if (!others.empty()) co_await run({"add", "--"}, std::move(others));
    co_return leftToIgnored;
}

Task<Staging::Paths> Staging::withoutVanished(Paths paths) {
    const std::optional<PathSet> held = co_await listed({"ls-files", "-z", "--"}, paths);
    if (!held) co_return paths;
    const auto look = [&] {
        Paths left;
        std::ranges::copy_if(paths, std::back_inserter(left), [&](const std::string& path) {
            return held->contains(path) ||
                   presenceOf(plan_.worktree.path.appending(path)) != PathPresence::absent;
        });
        return left;
    };
    Paths left = co_await runOn(blocking_, look);
    co_return left;
}

Task<> Staging::run(GitArguments command, Paths paths) {
    for (const std::string& path : paths) command.push_back(StagedPaths::argumentFor(path));
    co_await git_.runChecked(std::move(command), plan_.worktree.path, stageLimit);
}

Task<std::optional<CairnfieldError>> Staging::refusalOf(GitArguments command, Paths paths) {
    std::optional<CairnfieldError> refusal;
    try {
        co_await run(std::move(command), std::move(paths));
    } catch (const CairnfieldError& failure) {
        if (!failure.as<CairnfieldError::CommandFailed>()) throw;
        refusal = failure;
    }
    co_return refusal;
}

Task<std::optional<Staging::PathSet>> Staging::listed(GitArguments question, Paths paths) {
    for (const std::string& path : paths) question.push_back(StagedPaths::argumentFor(path));
    const CommandResult result = co_await git_.run(std::move(question), plan_.worktree.path, questionLimit);
    if (!result.succeeded()) co_return std::nullopt;
    PathSet names;
    for (const std::string_view name : GitPorcelainParser::splitNulTerminated(result.standardOutput))
        names.emplace(name);
    co_return names;
}

}  // namespace cairnfield
