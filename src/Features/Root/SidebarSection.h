#pragma once
// The places that the window can show. Plain data, any thread.

#include <array>
#include <string_view>

namespace cairnfield {

enum class SidebarSection {
    overview,
    worktrees,
    watchedFolders,
    developerFiles,
    recovery,
    history,
    integrations,
    preferences,
    notificationLab,
};

[[nodiscard]] std::string_view rawValue(SidebarSection section);
[[nodiscard]] std::string_view title(SidebarSection section);
[[nodiscard]] std::string_view symbolName(SidebarSection section);

/// The rows of the sidebar, in order. The notification lab has its place but no row.
inline constexpr std::array visibleSections{
    SidebarSection::overview,       SidebarSection::worktrees,   SidebarSection::watchedFolders,
    SidebarSection::developerFiles, SidebarSection::recovery,    SidebarSection::history,
    SidebarSection::integrations,   SidebarSection::preferences,
};

}  // namespace cairnfield
