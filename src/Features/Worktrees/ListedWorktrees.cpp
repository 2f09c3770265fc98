#include "Features/Worktrees/ListedWorktrees.h"

#include <algorithm>

namespace cairnfield {

namespace {

SizeKnowledge knowledge(const Worktree& worktree, std::size_t position,
                        const std::optional<SizingProgress>& progress) {
    const bool isMeasured = !progress || static_cast<std::int64_t>(position) < progress->completed;
    return isMeasured || worktree.sizeBytes > 0 ? SizeKnowledge::known : SizeKnowledge::awaited;
}

void fold(ListedWorktree& listed) {
    listed.foldedName = FoldedText(listed.worktree.repositoryName);
    listed.foldedBranch = FoldedText(listed.worktree.displayBranch());
    listed.foldedPath = FoldedText(listed.worktree.path.bytes());
}

bool placesDiffer(const Worktree& before, const Worktree& after) {
    return before.path != after.path || before.safety != after.safety || before.isMain != after.isMain ||
           before.repositoryName != after.repositoryName || before.repositoryRoot != after.repositoryRoot ||
           before.branch != after.branch || before.isDetached != after.isDetached ||
           before.isBare != after.isBare || before.headSHA != after.headSHA;
}

}  // namespace

ListedWorktrees::Update ListedWorktrees::update(const std::vector<Worktree>& worktrees,
                                                const std::optional<SizingProgress>& progress) {
    Update result;
    const bool isSizing = progress.has_value();
    const bool isSameList = std::ranges::equal(
        worktrees, worktrees_, {}, &Worktree::path,
        [](const ListedWorktree& listed) -> const FilePath& { return listed.worktree.path; });
    if (!isSameList) rebuild(worktrees, result);

    for (std::size_t position = 0; position < worktrees_.size(); ++position) {
        ListedWorktree& listed = worktrees_[position];
        bool isChanged = false;
        if (listed.worktree != worktrees[position]) {
            isChanged = true;
            if (take(listed, worktrees[position])) {
                listed.project =
                    projects_.try_emplace(listed.worktree.repositoryRoot.standardized(), projects_.size() + 1)
                        .first->second;
                result.orderMayDiffer = true;
            }
        }
        const SizeKnowledge now = knowledge(listed.worktree, position, progress);
        if (listed.sizeKnowledge != now) {
            listed.sizeKnowledge = now;
            isChanged = true;
        }
        if (isChanged) result.changed.push_back(listed.key);
    }
    if (!isSizing && adoptSizes()) result.orderMayDiffer = true;
    return result;
}

bool ListedWorktrees::adoptSizes() {
    bool isDifferent = false;
    for (ListedWorktree& listed : worktrees_) {
        isDifferent |= listed.orderBytes != listed.worktree.sizeBytes;
        listed.orderBytes = listed.worktree.sizeBytes;
    }
    return isDifferent;
}

const ListedWorktree* ListedWorktrees::find(const FilePath& id) const {
    const auto found = positions_.find(id);
    return found == positions_.end() ? nullptr : &worktrees_[found->second];
}

// Leaves every record as it was; the caller brings those that stayed up to date.
void ListedWorktrees::rebuild(const std::vector<Worktree>& worktrees, Update& result) {
    result.orderMayDiffer = true;
    std::vector<ListedWorktree> next;
    std::unordered_map<FilePath, std::size_t> positions;
    next.reserve(worktrees.size());
    positions.reserve(worktrees.size());
    for (const Worktree& worktree : worktrees) {
        FilePath id = worktree.id();
        const auto old = positions_.find(id);
        // A second record of one id is a row of its own; only the first takes over what was known of it.
        const bool isFirst = positions.try_emplace(id, next.size()).second;
        if (isFirst && old != positions_.end()) {
            next.push_back(std::move(worktrees_[old->second]));
        } else {
            next.push_back(prepared(worktree));
        }
    }
    worktrees_ = std::move(next);
    positions_ = std::move(positions);
}

ListedWorktree ListedWorktrees::prepared(const Worktree& worktree) {
    ListedWorktree listed;
    listed.worktree = worktree;
    listed.id = worktree.id();
    listed.key = ++lastKey_;
    listed.project =
        projects_.try_emplace(worktree.repositoryRoot.standardized(), projects_.size() + 1).first->second;
    listed.orderBytes = worktree.sizeBytes;
    fold(listed);
    return listed;
}

// Answers whether the worktree may now stand elsewhere, its size aside.
bool ListedWorktrees::take(ListedWorktree& listed, const Worktree& worktree) {
    const bool isPlaceDifferent = placesDiffer(listed.worktree, worktree);
    listed.worktree = worktree;
    if (isPlaceDifferent) fold(listed);
    return isPlaceDifferent;
}

}  // namespace cairnfield
