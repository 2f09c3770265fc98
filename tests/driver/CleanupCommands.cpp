#include "driver/CleanupCommands.h"

#include "Services/Cleanup/CleanupChoices.h"
#include "driver/ModelCommands.h"
#include "driver/Records.h"
#include "driver/Words.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

/// From a list with sizes, as a person sees it.
Task<Worktree> listedWorktree(AppModel& model, JsonLines& lines, WorktreeWords words) {
    co_await addRoots(model, lines, std::move(words.roots));
    co_await model.refreshWorktrees(true);
    co_await model.sizingFinished();
    const AppState& state = model.state();
    lines.printIfFailed("worktreeRefreshError", state.worktreeRefreshError.get());
    for (const Worktree& worktree : state.worktrees.get()) {
        if (worktree.id() == words.worktree.standardized()) co_return worktree;
    }
    if (!state.gitStatusMessage.get()) throw WrongWords("no worktree is listed at " + words.worktree.bytes());
    Worktree unlisted;
    unlisted.path = words.worktree;
    co_return unlisted;
}

RecoveryVaultEntry entryOf(const AppModel& model, const UUID& id) {
    const std::vector<RecoveryVaultEntry>& entries = model.state().vaultEntries.get();
    const auto found = std::ranges::find(entries, id, &RecoveryVaultEntry::id);
    if (found == entries.end()) throw WrongWords("the vault has no entry " + id.text());
    return *found;
}

}  // namespace

Task<> preflightWorktree(AppModel& model, JsonLines& lines, WorktreeWords words) {
    const Worktree worktree = co_await listedWorktree(model, lines, std::move(words));
    const CleanupPlan plan = model.makePlan(worktree);
    const CleanupPreflightReport report = co_await model.preflight(worktree);
    const ReviewLook look = co_await model.lookForReview(worktree, {});
    lines.print("result", {{"plan", jsonOf(plan)}, {"report", jsonOf(report)}, {"look", jsonOf(look)}});
}

Task<> cleanWorktree(AppModel& model, JsonLines& lines, CleanWords words, ProgressLines& progress) {
    const Worktree worktree = co_await listedWorktree(model, lines, std::move(words.which));
    CleanupPlan plan = model.makePlan(worktree);
    ReviewLook look = co_await model.lookForReview(worktree, {});
    plan.nested = std::move(look.nested);
    CleanupChoices choices = CleanupChoices::proposed(plan);
    if (words.noUntracked) choices.includeUntracked = false;
    if (words.noVault) choices.includeSensitiveInVault = false;
    if (words.noVault || words.noNestedVault) choices.includeNestedInVault = false;
    if (words.pullRequest) choices.createPullRequest = true;
    if (words.message) choices.commitMessage = *words.message;

    const bool isSignedIn = !model.state().githubStatus.get().authenticatedHosts.empty();
    const std::optional<CleanupReceipt> receipt = co_await model.execute(applied(plan, choices, isSignedIn));
    progress.check();
    Json fields = Json::object();
    if (receipt) fields["receipt"] = *receipt;
    lines.print("result", std::move(fields));
}

Task<> listReceipts(AppModel& model, JsonLines& lines) {
    lines.print("result", {{"receipts", model.state().receipts.get()}});
    co_return;
}

Task<> listVault(AppModel& model, JsonLines& lines) {
    lines.print("result", {{"entries", model.state().vaultEntries.get()}});
    co_return;
}

Task<> restoreFromVault(AppModel& model, JsonLines& lines, UUID id, FilePath destination) {
    RecoveryVaultEntry entry = entryOf(model, id);
    try {
        co_await model.restoreVaultEntry(std::move(entry), std::move(destination));
        lines.print("result", {{"entries", model.state().vaultEntries.get()}});
    } catch (...) {
        lines.printCurrentError();
    }
}

Task<> removeFromVault(AppModel& model, JsonLines& lines, UUID id) {
    RecoveryVaultEntry entry = entryOf(model, id);
    const std::optional<std::string> note = co_await model.removeVaultEntry(std::move(entry));
    Json fields{{"entries", model.state().vaultEntries.get()}};
    if (note) fields["note"] = *note;
    lines.print("result", std::move(fields));
}

}  // namespace cairnfield
