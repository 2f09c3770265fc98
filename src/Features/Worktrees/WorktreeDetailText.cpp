#include "Features/Worktrees/WorktreeDetailText.h"

#include "Services/Git/IgnoredFileClassifier.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

#include <fmt/format.h>

namespace cairnfield {

namespace {

std::vector<LabelledText> gitStateRows(const Worktree& worktree, SizeKnowledge knowledge, Date now) {
    const GitStatusSummary& status = worktree.status;
    std::vector<LabelledText> rows;
    rows.push_back({"Branch", visibleText(worktree.displayBranch())});
    if (worktree.headSHA) rows.push_back({"HEAD", visibleText(*worktree.headSHA), true});
    rows.push_back({"Tracked changes", fmt::to_string(status.modifiedCount)});
    rows.push_back({"Staged", fmt::to_string(status.stagedCount)});
    rows.push_back({"Untracked files", fmt::to_string(status.untrackedCount)});
    if (status.conflictedCount >= 1) rows.push_back({"Conflicts", fmt::to_string(status.conflictedCount)});
    if (worktree.operationInProgress) {
        rows.push_back({"In progress", std::string(rawValue(*worktree.operationInProgress))});
    }
    rows.push_back({"Size", sizeText(worktree, knowledge)});
    rows.push_back({"Last activity", DateFormatting::relative(worktree.lastActivity, now)});
    rows.push_back({"Source", std::string(title(worktree.source))});
    return rows;
}

std::vector<IgnoredEntryText> ignoredRows(const Worktree& worktree) {
    std::vector<IgnoredEntryText> rows;
    rows.reserve(worktree.ignoredEntries.size());
    for (const IgnoredEntry& entry : worktree.ignoredEntries) {
        IgnoredEntryText row{.name = visibleText(entry.name),
                             .size = ByteFormatting::string(entry.sizeBytes),
                             .classification = std::string(title(entry.classification)),
                             .isDirectory = entry.isDirectory};
        if (const auto hint = IgnoredFileClassifier::rebuildHint(entry.name)) {
            row.rebuildHint = fmt::format("Rebuilt by {}.", *hint);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<LabelledText> remoteRows(const Worktree& worktree) {
    const RemoteTrackingState& tracking = worktree.tracking;
    std::vector<LabelledText> rows;
    if (tracking.upstreamBranch) rows.push_back({"Upstream", visibleText(*tracking.upstreamBranch)});
    rows.push_back({"Ahead / behind", fmt::format("{} / {}", tracking.ahead, tracking.behind)});
    if (tracking.defaultBranch) rows.push_back({"Default branch", visibleText(*tracking.defaultBranch)});
    rows.push_back({"Commits on the remote", tracking.headIsRemotelyPreserved ? "Yes" : "Not verified"});
    if (worktree.pullRequest) rows.push_back({"Pull request", numberAndState(*worktree.pullRequest)});
    return rows;
}

}  // namespace

CleanupSectionText cleanupSectionText(const Worktree& worktree) {
    switch (worktree.safety) {
        case WorktreeSafety::mainWorktree:
        case WorktreeSafety::bareRepository:
        case WorktreeSafety::inaccessible:
            return {{"lock", std::string(explanation(worktree.safety))}, false, false, {}};
        case WorktreeSafety::activeOrLocked:
        case WorktreeSafety::mergeOrRebaseInProgress:
        case WorktreeSafety::unresolvedConflicts:
            return {{"hand.raised", "Finish what is in progress here, then refresh."}, false, false, {}};
        default:
            break;
    }
    const char* message =
        worktree.tracking.headIsRemotelyPreserved
            ? "Your commits already exist on the remote. Cairnfield will verify that before removing "
              "anything."
            : "Cairnfield will preserve this work on a recovery branch before removing the worktree.";
    return {
        {"", message}, true, !worktree.isPinned, worktree.isPinned ? "Unpin this worktree to clean it." : ""};
}

WorktreeDetailText detailText(const Worktree& worktree, SizeKnowledge knowledge, Date now) {
    WorktreeDetailText text;
    text.branch = visibleText(worktree.displayBranch());
    text.path = worktree.path.display();
    text.disposition = disposition(worktree.safety);
    text.explanation = explanation(worktree.safety);
    if (worktree.isActive && worktree.activityReason) {
        text.notes.push_back({"person.fill.checkmark", visibleText(*worktree.activityReason)});
    }
    if (worktree.inspectionError) {
        text.notes.push_back({"exclamationmark.triangle", visibleText(*worktree.inspectionError)});
    }
    text.gitState = gitStateRows(worktree, knowledge, now);
    text.ignored = ignoredRows(worktree);
    if (worktree.remotes.empty()) {
        text.remoteMessage = "This repository has no remote, so nothing here can be preserved by pushing.";
    } else {
        text.remote = remoteRows(worktree);
    }
    text.cleanup = cleanupSectionText(worktree);
    text.pinTitle = worktree.isPinned ? "Unpin" : "Pin";
    return text;
}

}  // namespace cairnfield
