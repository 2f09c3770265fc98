#include "Features/Worktrees/WorktreeTexts.h"

#include "Models/WorktreeGroups.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

#include <fmt/format.h>

namespace cairnfield {

std::string sizeText(const Worktree& worktree, SizeKnowledge knowledge) {
    if (knowledge == SizeKnowledge::awaited) return std::string(unknownSizeText);
    return ByteFormatting::string(worktree.sizeBytes);
}

std::string numberAndState(const PullRequestInfo& pullRequest) {
    return fmt::format("#{} {}", pullRequest.number, title(pullRequest.state));
}

WorktreeRowText rowText(const Worktree& worktree, SizeKnowledge knowledge, Date now) {
    WorktreeRowText text;
    text.branch = visibleText(worktree.displayBranch());
    text.path = worktree.path.display();
    text.disposition = title(disposition(worktree.safety));
    if (worktree.source == WorktreeSource::claude) text.madeBy = title(worktree.source);
    if (worktree.pullRequest) text.pullRequest = "PR " + numberAndState(*worktree.pullRequest);
    text.lastActivity = DateFormatting::relative(worktree.lastActivity, now);
    text.size = sizeText(worktree, knowledge);

    text.description = text.disposition;
    const std::string spokenSize = knowledge == SizeKnowledge::awaited ? "Size not measured yet" : text.size;
    for (const std::string& part : {text.madeBy, text.pullRequest, text.lastActivity, spokenSize,
                                    std::string(worktree.isPinned ? "Pinned" : ""), text.path}) {
        if (!part.empty()) text.description += ", " + part;
    }
    return text;
}

void ProjectTotals::add(const Worktree& worktree) {
    totalBytes += worktree.sizeBytes;
    ++worktreeCount;
    if (!worktree.isMain) ++linkedWorktreeCount;
    if (isReclaimable(worktree)) reclaimableBytes += worktree.reclaimableBytes();
    if (needsAttention(worktree)) ++needsAttentionCount;
}

std::string projectSummary(const ProjectTotals& totals) {
    return fmt::format("{} total, {} {}", ByteFormatting::string(totals.totalBytes), totals.worktreeCount,
                       totals.worktreeCount == 1 ? "worktree" : "worktrees");
}

std::string projectDetails(const ProjectTotals& totals) {
    std::string text;
    if (totals.linkedWorktreeCount >= 1) text += fmt::format(" · {} linked", totals.linkedWorktreeCount);
    if (totals.reclaimableBytes >= 1) {
        text += fmt::format(" · {} reclaimable", ByteFormatting::string(totals.reclaimableBytes));
    }
    if (totals.needsAttentionCount >= 1)
        text += fmt::format(" · {} need attention", totals.needsAttentionCount);
    return text;
}

std::optional<std::string> progressText(const std::optional<SizingProgress>& progress) {
    if (!progress || progress->total < 1) return std::nullopt;
    return fmt::format("Measuring {}/{}", progress->completed, progress->total);
}

}  // namespace cairnfield
