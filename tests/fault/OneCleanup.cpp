#include "fault/OneCleanup.h"

#include "Features/CleanupReview/CleanupReviewText.h"
#include "Features/CleanupReview/ReviewListText.h"
#include "Persistence/CleanupReceiptStore.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Services/Cleanup/CleanupChoices.h"
#include "Services/Cleanup/CleanupCoordinator.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "Services/Cleanup/ReviewLook.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Services/Git/ActivityDetecting.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/GitHub/GitHubCLIService.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Errors/CairnfieldError.h"
#include "fault/FaultyProcessRunner.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace cairnfield {

namespace {

/// The vault with a checkpoint on either side.
class CheckedVault final : public RecoveryVaultServicing {
public:
    CheckedVault(RecoveryVaultServicing& vault, Checkpoints& checkpoints)
        : vault_(vault), checkpoints_(checkpoints) {}

    Task<std::vector<RecoveryVaultEntry>> archive(std::vector<IgnoredEntry> files, Worktree from,
                                                  std::string repositoryName, UUID receiptID,
                                                  std::int64_t retentionDays) override {
        checkpoints_.reach("before archive");
        std::vector<RecoveryVaultEntry> entries = co_await vault_.archive(
            std::move(files), std::move(from), std::move(repositoryName), receiptID, retentionDays);
        checkpoints_.reach("after archive");
        co_return entries;
    }
    Task<std::vector<RecoveryVaultEntry>> entries() override { return vault_.entries(); }
    Task<std::optional<FilePath>> remove(RecoveryVaultEntry entry) override {
        return vault_.remove(std::move(entry));
    }
    Task<> restore(RecoveryVaultEntry entry, FilePath destination) override {
        return vault_.restore(std::move(entry), std::move(destination));
    }

private:
    RecoveryVaultServicing& vault_;
    Checkpoints& checkpoints_;
};

/// The whole program as far as a cleanup needs it.
struct Parts {
    Parts(const RunRequest& asked, Checkpoints& checkpoints)
        : request(asked),
          support(asked.data, asked.config),
          measurer(walking, checkpoints),
          commands(processes, checkpoints, asked),
          git(commands, asked.git),
          scanner(pool, walking, measurer, checkpoints),
          detector(checkpoints),
          inspector(git, scanner, detector),
          github(commands, asked.gh),
          vault(blocking, support, volumes, checkpoints, asked.largestVaultFile),
          checkedVault(vault, checkpoints),
          receipts(pool, support),
          coordinator({pool, blocking, volumes, checkpoints, support.directory()}, git, github, checkedVault,
                      receipts, inspector) {}

    const RunRequest& request;
    Reactor reactor;
    ThreadPool pool{2};
    ThreadPool blocking{1};
    ThreadPool walking{1};
    LinuxChildProcessStarter starter{reactor};
    ReactorClock continuousClock{reactor};
    SystemProcessRunner processes{starter, continuousClock, pool};
    LinuxVolumeInformation volumes;
    ApplicationSupport support;
    LinuxTreeMeasurer measurer;
    FaultyProcessRunner commands;
    GitCommandRunner git;
    DirectorySizeScanner scanner;
    FileSystemActivityDetector detector;
    GitWorktreeInspector inspector;
    GitHubCLIService github;
    RecoveryVaultService vault;
    CheckedVault checkedVault;
    CleanupReceiptStore receipts;
    CleanupCoordinator coordinator;
};

/// As a refresh of the repository sees it; absent when git does not list it.
Task<std::optional<Worktree>> reviewed(Parts& parts) {
    const std::vector<GitWorktreeEntry> entries =
        co_await parts.inspector.listWorktrees(parts.request.repository);
    const auto entry = std::ranges::find(entries, parts.request.worktree, &GitWorktreeEntry::path);
    if (entry == entries.end()) co_return std::nullopt;
    const WorktreeInspectionOptions options;
    Worktree worktree = co_await parts.inspector.inspect(*entry, entries.front().path, options);
    co_return worktree;
}

CleanupPlan proposedPlan(const Worktree& worktree, const RunRequest& request, Date now) {
    PlanDefaults defaults;
    defaults.createDraftPullRequests = request.createsPullRequest;
    defaults.preserveSmallLocalFiles = request.includesSensitive;
    defaults.maxVaultFileBytes = request.largestVaultFile;
    defaults.retentionDays = 90;
    defaults.now = now;
    return CleanupPlan::makeDefault(worktree, defaults);
}

/// As the review sheet makes it of what the person switched.
CleanupPlan chosenPlan(const CleanupPlan& proposed, const RunRequest& request) {
    CleanupChoices choices = CleanupChoices::proposed(proposed);
    choices.includeUntracked = request.includesUntracked;
    choices.includeSensitiveInVault = request.includesSensitive;
    choices.includeNestedInVault = request.includesNested;
    choices.createPullRequest = request.createsPullRequest;
    return applied(proposed, choices, request.createsPullRequest);
}

Json textsOf(const std::vector<std::string>& texts) {
    Json list = Json::array();
    for (const std::string& text : texts) list.push_back(jsonFromText(text));
    return list;
}

Json rowsOf(const std::vector<LabelledText>& rows) {
    Json list = Json::array();
    for (const LabelledText& row : rows)
        list.push_back({{"label", jsonFromText(row.label)}, {"value", jsonFromText(row.value)}});
    return list;
}

/// What the program goes by.
void printPlan(const CleanupPlan& plan, JsonLines& lines) {
    const Worktree& worktree = plan.worktree;
    lines.print("review", {{"safety", rawValue(worktree.safety)},
                           {"head", worktree.headSHA.value_or("")},
                           {"changed", textsOf(plan.trackedPathsToCommit)},
                           {"untracked", textsOf(plan.untrackedPathsToCommit)},
                           {"archived", plan.filesToArchive.size()},
                           {"preserves", plan.requiresPreservation()},
                           {"branch", jsonFromText(plan.recoveryBranch)}});
}

Json filesOf(const NamedFilesText& files) {
    return {{"statement", jsonFromText(files.statement)}, {"lines", textsOf(files.lines)}};
}

/// What the sheet says before the person starts it, line by line.
void printScreen(const CleanupPlan& plan, const CleanupPreflightReport& report, bool keepsNested,
                 JsonLines& lines) {
    const Worktree& worktree = plan.worktree;
    Json ignored = Json::array();
    for (const IgnoredEntry& entry : worktree.ignoredEntries) {
        ignored.push_back({{"name", jsonFromText(entry.name)},
                           {"line", jsonFromText(ignoredEntryLine(entry))},
                           {"class", rawValue(entry.classification)}});
    }
    const PreservedText preserved = preservedText(plan, report);
    lines.print("screen", {{"ignored", std::move(ignored)},
                           {"changed", textsOf(worktree.status.changedPaths)},
                           {"untracked", textsOf(worktree.status.untrackedPaths)},
                           {"warnings", textsOf(warningLines(report))},
                           {"found", rowsOf(foundRows(worktree))},
                           {"preserved", jsonFromText(preserved.statement.text)},
                           {"rows", rowsOf(preserved.rows)},
                           {"sensitive", textsOf(sensitiveLines(worktree))},
                           {"rebuildable", textsOf(rebuildableLines(worktree))},
                           {"nested", filesOf(nestedFilesText(plan.nested))},
                           {"going", filesOf(nestedFilesThatGoText(plan.nested, keepsNested))}});
}

Task<> cleanUp(Parts& parts, Checkpoints& checkpoints, JsonLines& lines) {
    // As the program's start does, which removes what a crash left.
    const std::vector<RecoveryVaultEntry> kept = co_await parts.vault.entries();
    const std::vector<CleanupReceipt> before = co_await parts.receipts.all();
    lines.print("stores", {{"vault", kept.size()}, {"receipts", before.size()}});

    parts.commands.enter("review ");
    std::optional<Worktree> worktree;
    std::optional<std::string> failure;
    try {
        worktree = co_await reviewed(parts);
    } catch (const std::exception& caught) {
        failure = describe(caught);
    }
    if (!worktree) {
        lines.print("unlisted", {{"reason", jsonFromText(failure.value_or("git does not list it"))}});
        co_return;
    }
    CleanupPlan proposed = proposedPlan(*worktree, parts.request, checkpoints.now());
    const ReviewLook look = lookForReview(*worktree, parts.request.largestVaultFile, {});
    proposed.nested = look.nested;
    const CleanupPlan plan = chosenPlan(proposed, parts.request);
    printPlan(plan, lines);
    CleanupPreflightReport preflight =
        co_await parts.coordinator.preflight(*worktree, proposed.requiresPreservation());
    if (!preflight.passed) {
        lines.print("blocked", {{"reason", jsonFromText(blockedText(preflight))}});
        co_return;
    }
    if (look.nested.failure) {
        lines.print("blocked", {{"reason", jsonFromText(*look.nested.failure)}});
        co_return;
    }
    printScreen(plan, preflight, parts.request.includesNested, lines);
    parts.commands.enter("");
    checkpoints.reach("reviewed");
    const CleanupCoordinator::ProgressReport report = [&](const CleanupProgress& progress) {
        checkpoints.reach("stage " + std::string(rawValue(progress.stage)));
    };
    const CleanupReceipt receipt = co_await parts.coordinator.execute(plan, report);
    Json fields{{"receipt", receipt}};
    lines.print("receipt", std::move(fields));
}

}  // namespace

void cleanOnce(const RunRequest& request, Checkpoints& checkpoints, JsonLines& lines) {
    Parts parts(request, checkpoints);
    runBlocking(cleanUp(parts, checkpoints, lines).on(parts.pool));
    runBlocking(parts.scanner.stop());
}

}  // namespace cairnfield
