#include "Features/CleanupReview/CleanupReviewText.h"

#include "Features/Presentation/Tints.h"
#include "Services/Git/IgnoredFileClassifier.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Text/Text.h"

#include <fmt/format.h>

namespace cairnfield {

namespace {

// How many commits no remote is known to have. A branch that follows nothing is counted against what it grew
// from.
std::string unpushedCommits(const RemoteTrackingState& tracking) {
    if (tracking.headIsRemotelyPreserved) return "0";
    if (tracking.upstreamBranch || tracking.ahead > 0) return fmt::to_string(tracking.ahead);
    return tracking.uniqueCommitCount ? fmt::to_string(*tracking.uniqueCommitCount) : "—";
}

std::string nameAndSize(const IgnoredEntry& entry) {
    return fmt::format("{} · {}", visibleText(entry.name), ByteFormatting::string(entry.sizeBytes));
}

std::vector<LabelledText> whereaboutsOf(const CleanupReceipt& receipt) {
    std::vector<LabelledText> rows;
    if (receipt.recoveryBranch)
        rows.push_back({"Recovery branch", visibleText(*receipt.recoveryBranch), true});
    if (receipt.preservedCommitSHA)
        rows.push_back({"Commit", visibleText(*receipt.preservedCommitSHA), true});
    if (receipt.pullRequestNumber)
        rows.push_back({"Pull request", fmt::format("#{}", *receipt.pullRequestNumber)});
    if (!receipt.recoveryVaultPaths.empty())
        rows.push_back({"Recovery Vault", fmt::format("{} file(s)", receipt.recoveryVaultPaths.size())});
    if (receipt.reclaimedBytes > 0)
        rows.push_back({"Reclaimed", ByteFormatting::string(receipt.reclaimedBytes)});
    return rows;
}

}  // namespace

std::string reviewSubtitle(const Worktree& worktree) {
    return fmt::format("{} · {}", visibleText(worktree.repositoryName),
                       visibleText(worktree.displayBranch()));
}

std::string blockedText(const CleanupPreflightReport& report) {
    return report.failures.empty() ? "Preflight failed." : visibleLines(report.failures.front());
}

std::vector<std::string> warningLines(const CleanupPreflightReport& report) {
    std::vector<std::string> lines;
    lines.reserve(report.warnings.size());
    for (const std::string& warning : report.warnings) lines.push_back(visibleText(warning));
    return lines;
}

std::vector<LabelledText> foundRows(const Worktree& worktree) {
    const GitStatusSummary& status = worktree.status;
    return {{"Safety", std::string(title(disposition(worktree.safety)))},
            {"Tracked changes", fmt::to_string(status.stagedCount + status.modifiedCount)},
            {"Untracked files", fmt::to_string(status.untrackedCount)},
            {"Unpushed commits", unpushedCommits(worktree.tracking)},
            {"Estimated reclaim", ByteFormatting::string(worktree.sizeBytes)}};
}

PreservedText preservedText(const CleanupPlan& plan, const CleanupPreflightReport& report) {
    if (!plan.requiresPreservation())
        return {false, {"cloud", "Every commit here already exists on the remote."}, {}};
    PreservedText text{
        true,
        {"arrow.up.doc", fmt::format("Committed and pushed to {}", visibleText(plan.recoveryBranch))},
        {}};
    if (plan.remoteName) text.rows.push_back({"Remote", visibleText(*plan.remoteName)});
    if (report.resolvedBaseBranch)
        text.rows.push_back({"Base branch", visibleText(*report.resolvedBaseBranch)});
    return text;
}

std::vector<std::string> sensitiveLines(const Worktree& worktree) {
    std::vector<std::string> lines;
    for (const IgnoredEntry& entry : worktree.sensitiveIgnoredEntries())
        lines.push_back("• " + nameAndSize(entry));
    return lines;
}

std::vector<std::string> rebuildableLines(const Worktree& worktree) {
    std::vector<std::string> lines;
    for (const IgnoredEntry& entry : worktree.rebuildableIgnoredEntries()) {
        std::string line = nameAndSize(entry);
        if (const auto hint = IgnoredFileClassifier::rebuildHint(entry.name))
            line += fmt::format(" · rebuilt by {}", *hint);
        lines.push_back(std::move(line));
    }
    return lines;
}

ReceiptText receiptText(const CleanupReceipt& receipt) {
    ReceiptText text;
    text.title = {symbolName(receipt.outcome), std::string(title(receipt.outcome))};
    text.tint = tintName(receipt.outcome);
    if (receipt.errorSummary) {
        text.failure = visibleLines(*receipt.errorSummary);
        if (receipt.outcome == CleanupOutcome::partiallyCompleted)
            text.note = "Your work was pushed. The worktree was left in place.";
    }
    text.whereabouts = whereaboutsOf(receipt);
    return text;
}

ReceiptText neverBegunText(const std::optional<std::string>& reason) {
    return {.title = {"hand.raised", "Nothing was changed"},
            .tint = "orange",
            .failure = visibleLines(reason.value_or("Git is unavailable.")),
            .note = "The cleanup did not begin.",
            .whereabouts = {}};
}

}  // namespace cairnfield
