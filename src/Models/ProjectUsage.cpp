#include "Models/ProjectUsage.h"

#include "Models/WorktreeGroups.h"
#include "Shared/Formatting/TextMatching.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace cairnfield {

namespace {

/// A worktree that nobody can enter will never have a size and so does not wait for one. Every other one
/// takes up something on disk, if only its own ".git".
bool waitsForSize(const Worktree& worktree) {
    return worktree.sizeBytes == 0 && !worktree.isPrunable && !worktree.inspectionError &&
           worktree.safety != WorktreeSafety::inaccessible;
}

/// One project before its worktrees are copied.
struct Group {
    std::size_t order = 0;  ///< among the projects as they are first named
    std::vector<const Worktree*> worktrees;
    std::int64_t totalBytes = 0;
};

const std::string& nameOf(const Group& group) {
    return group.worktrees.front()->repositoryName;
}

/// In the order in which the repositories are first named.
std::vector<Group> grouped(const std::vector<Worktree>& worktrees) {
    std::vector<Group> groups;
    std::unordered_map<FilePath, std::size_t> places;
    for (const Worktree& worktree : worktrees) {
        const std::size_t place =
            places.try_emplace(worktree.repositoryRoot.standardized(), groups.size()).first->second;
        if (place == groups.size()) groups.push_back({place, {}, 0});
        groups[place].worktrees.push_back(&worktree);
        groups[place].totalBytes += worktree.sizeBytes;
    }
    return groups;
}

bool comesBefore(const Worktree* left, const Worktree* right) {
    if (left->isMain != right->isMain) return left->isMain;
    if (left->sizeBytes != right->sizeBytes) return left->sizeBytes > right->sizeBytes;
    return left < right;  // both lie in one list, whose order decides
}

}  // namespace

std::int64_t ProjectUsage::totalBytes() const {
    std::int64_t total = 0;
    for (const Worktree& worktree : worktrees) total += worktree.sizeBytes;
    return total;
}

std::int64_t ProjectUsage::worktreeCount() const {
    return std::ssize(worktrees);
}

std::int64_t ProjectUsage::linkedWorktreeCount() const {
    return std::ranges::count_if(worktrees, [](const Worktree& worktree) { return !worktree.isMain; });
}

std::int64_t ProjectUsage::needsAttentionCount() const {
    return std::ranges::count_if(worktrees, needsAttention);
}

std::int64_t ProjectUsage::reclaimableBytes() const {
    std::int64_t total = 0;
    for (const Worktree& worktree : worktrees)
        if (isReclaimable(worktree)) total += worktree.reclaimableBytes();
    return total;
}

std::optional<Date> ProjectUsage::lastActivity() const {
    std::optional<Date> newest;
    for (const Worktree& worktree : worktrees) newest = std::max(newest, worktree.lastActivity);
    return newest;
}

bool ProjectUsage::isFullySized() const {
    return std::ranges::none_of(worktrees, waitsForSize);
}

std::vector<ProjectUsage> ProjectUsage::rollUp(const std::vector<Worktree>& worktrees) {
    std::vector<Group> groups = grouped(worktrees);
    for (Group& group : groups) std::ranges::sort(group.worktrees, comesBefore);
    std::ranges::sort(groups, [](const Group& left, const Group& right) {
        if (left.totalBytes != right.totalBytes) return left.totalBytes > right.totalBytes;
        const int byName = compareIgnoringCase(nameOf(left), nameOf(right));
        return byName != 0 ? byName < 0 : left.order < right.order;
    });

    std::vector<ProjectUsage> projects;
    projects.reserve(groups.size());
    for (const Group& group : groups) {
        const Worktree& first = *group.worktrees.front();
        ProjectUsage& project =
            projects.emplace_back(ProjectUsage{first.repositoryRoot, first.repositoryName, {}});
        project.worktrees.reserve(group.worktrees.size());
        for (const Worktree* worktree : group.worktrees) project.worktrees.push_back(*worktree);
    }
    return projects;
}

}  // namespace cairnfield
