#pragma once
// Which worktrees the list shows, and in which sections and order. Pure, over worktrees that were prepared
// once: searching, filtering and regrouping thousands of them copies no record and folds no text. Any thread.

#include "Features/Lists/RowChanges.h"
#include "Features/Worktrees/WorktreeTexts.h"
#include "Shared/Formatting/TextMatching.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

enum class WorktreeGrouping { project, safety };

[[nodiscard]] std::string_view rawValue(WorktreeGrouping grouping);
[[nodiscard]] std::string_view title(WorktreeGrouping grouping);

/// A worktree with what the list needs to know of it, prepared when it arrived or changed.
struct ListedWorktree {
    Worktree worktree;
    FilePath id;
    RowKey key = 0;      ///< stays the same for this id
    RowKey project = 0;  ///< the same for all worktrees of one repository
    SizeKnowledge sizeKnowledge = SizeKnowledge::known;
    std::int64_t orderBytes = 0;  ///< the size that decides the order; see ListedWorktrees
    FoldedText foldedName;
    FoldedText foldedBranch;
    FoldedText foldedPath;
};

/// What a person asked to see. A worktree stays when it has the disposition, if one is chosen, and when its
/// repository's name, its branch or its path contains the text, case aside.
struct WorktreeQuery {
    std::string searchText;
    std::optional<SafetyDisposition> disposition;
    WorktreeGrouping grouping = WorktreeGrouping::project;
};

/// A section of the list: the members are positions in the list of worktrees.
struct WorktreeSection {
    RowKey key = 0;  ///< of its header; no worktree has it
    std::vector<std::uint32_t> members;
};

[[nodiscard]] std::vector<std::uint32_t> filtered(std::span<const ListedWorktree> worktrees,
                                                  const WorktreeQuery& query);

/// By project, in the order of ProjectUsage::rollUp; or by disposition, in the order of the dispositions'
/// ranks with the largest worktree of each first.
[[nodiscard]] std::vector<WorktreeSection> sections(std::span<const ListedWorktree> worktrees,
                                                    const std::vector<std::uint32_t>& members,
                                                    WorktreeGrouping grouping);

}  // namespace cairnfield
