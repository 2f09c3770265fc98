#pragma once
// The worktrees that the list stands on, kept up to date from the model's list with the least work: only what
// is new or has changed is copied and prepared again. Plain values, one thread at a time.
//
// Two rules live here:
// - A size is awaited while sizing is under way, has not come to this worktree yet, and none is known from
// before. Sizing goes
//   through the list in its order. Once nobody measures any more, a size of 0 is shown as what it is.
// - While sizing is under way the rows keep the order they had, so that nothing moves under the pointer as
// sizes arrive; when
//   it has ended, or when the person searches, filters or regroups, the order is that of the sizes as they
//   then are.

#include "Features/Worktrees/WorktreeGrouping.h"
#include "Models/ProjectUsage.h"

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

namespace cairnfield {

class ListedWorktrees {
public:
    /// What an update found.
    struct Update {
        std::vector<RowKey> changed;  ///< of those that stayed: what is shown of them is other than before
        bool orderMayDiffer = false;  ///< a worktree came or went, or something changed that places it
    };

    Update update(const std::vector<Worktree>& worktrees, const std::optional<SizingProgress>& progress);

    /// Orders by the sizes as they are now. Answers whether any size differs from the one that decided so
    /// far.
    bool adoptSizes();

    [[nodiscard]] const std::vector<ListedWorktree>& all() const { return worktrees_; }
    /// Absent when no worktree has this id.
    [[nodiscard]] const ListedWorktree* find(const FilePath& id) const;

private:
    void rebuild(const std::vector<Worktree>& worktrees, Update& result);
    ListedWorktree prepared(const Worktree& worktree);
    static bool take(ListedWorktree& listed, const Worktree& worktree);

    std::vector<ListedWorktree> worktrees_;                ///< in the model's order
    std::unordered_map<FilePath, std::size_t> positions_;  ///< by id
    std::unordered_map<FilePath, RowKey> projects_;        ///< by standardized root; never forgotten
    RowKey lastKey_ = 0;
};

}  // namespace cairnfield
