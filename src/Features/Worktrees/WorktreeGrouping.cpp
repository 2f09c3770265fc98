#include "Features/Worktrees/WorktreeGrouping.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace cairnfield {

namespace {

// Headers and worktrees share one list: the high bits tell whose key it is.
constexpr RowKey projectHeader = RowKey{1} << 62;
constexpr RowKey dispositionHeader = RowKey{1} << 63;

// Positions in the list: at equal sizes the list's own order decides.
auto bySize(std::span<const ListedWorktree> worktrees) {
    return [worktrees](std::uint32_t left, std::uint32_t right) {
        const std::int64_t leftBytes = worktrees[left].orderBytes;
        const std::int64_t rightBytes = worktrees[right].orderBytes;
        return leftBytes != rightBytes ? leftBytes > rightBytes : left < right;
    };
}

std::vector<WorktreeSection> byProject(std::span<const ListedWorktree> worktrees,
                                       const std::vector<std::uint32_t>& members) {
    struct Project {
        std::size_t order = 0;  // among the projects as they are first named
        std::int64_t orderBytes = 0;
        WorktreeSection section;
    };
    std::vector<Project> projects;
    std::unordered_map<RowKey, std::size_t> places;
    for (const std::uint32_t member : members) {
        const ListedWorktree& listed = worktrees[member];
        const std::size_t place = places.try_emplace(listed.project, projects.size()).first->second;
        if (place == projects.size()) projects.push_back({place, 0, {projectHeader | listed.project, {}}});
        projects[place].section.members.push_back(member);
        projects[place].orderBytes += listed.orderBytes;
    }
    for (Project& project : projects) {
        std::ranges::sort(project.section.members, [&](std::uint32_t left, std::uint32_t right) {
            const bool isLeftMain = worktrees[left].worktree.isMain;
            if (isLeftMain != worktrees[right].worktree.isMain) return isLeftMain;
            return bySize(worktrees)(left, right);
        });
    }
    const auto name = [&](const Project& project) -> const std::string& {
        return worktrees[project.section.members.front()].worktree.repositoryName;
    };
    std::ranges::sort(projects, [&](const Project& left, const Project& right) {
        if (left.orderBytes != right.orderBytes) return left.orderBytes > right.orderBytes;
        const int byName = compareIgnoringCase(name(left), name(right));
        return byName != 0 ? byName < 0 : left.order < right.order;
    });

    std::vector<WorktreeSection> result;
    result.reserve(projects.size());
    for (Project& project : projects) result.push_back(std::move(project.section));
    return result;
}

std::vector<WorktreeSection> byDisposition(std::span<const ListedWorktree> worktrees,
                                           const std::vector<std::uint32_t>& members) {
    std::array<WorktreeSection, allDispositions.size()> groups;
    for (const std::uint32_t member : members) {
        const auto rank = static_cast<std::size_t>(sortRank(disposition(worktrees[member].worktree.safety)));
        groups[rank].members.push_back(member);
    }
    std::vector<WorktreeSection> result;
    for (std::size_t rank = 0; rank < groups.size(); ++rank) {
        if (groups[rank].members.empty()) continue;
        groups[rank].key = dispositionHeader | rank;
        std::ranges::sort(groups[rank].members, bySize(worktrees));
        result.push_back(std::move(groups[rank]));
    }
    return result;
}

}  // namespace

std::string_view rawValue(WorktreeGrouping grouping) {
    return grouping == WorktreeGrouping::project ? "project" : "safety";
}

std::string_view title(WorktreeGrouping grouping) {
    return grouping == WorktreeGrouping::project ? "Project" : "Safety";
}

std::vector<std::uint32_t> filtered(std::span<const ListedWorktree> worktrees, const WorktreeQuery& query) {
    const FoldedText needle(query.searchText);
    std::vector<std::uint32_t> members;
    members.reserve(worktrees.size());
    for (std::uint32_t position = 0; position < worktrees.size(); ++position) {
        const ListedWorktree& listed = worktrees[position];
        if (query.disposition && disposition(listed.worktree.safety) != *query.disposition) continue;
        if (listed.foldedName.contains(needle) || listed.foldedBranch.contains(needle) ||
            listed.foldedPath.contains(needle)) {
            members.push_back(position);
        }
    }
    return members;
}

std::vector<WorktreeSection> sections(std::span<const ListedWorktree> worktrees,
                                      const std::vector<std::uint32_t>& members, WorktreeGrouping grouping) {
    return grouping == WorktreeGrouping::project ? byProject(worktrees, members)
                                                 : byDisposition(worktrees, members);
}

}  // namespace cairnfield
