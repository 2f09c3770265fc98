#include "Features/Root/SidebarSection.h"

#include <cstddef>

namespace cairnfield {

namespace {

struct Presentation {
    std::string_view rawValue;
    std::string_view title;
    std::string_view symbolName;
};

constexpr std::array presentations{
    Presentation{"overview", "Overview", "square.grid.2x2"},
    Presentation{"worktrees", "Worktrees", "arrow.triangle.branch"},
    Presentation{"watchedFolders", "Watched Folders", "folder"},
    Presentation{"developerFiles", "Developer Files", "hammer"},
    Presentation{"recovery", "Recovery", "archivebox"},
    Presentation{"history", "History", "clock.arrow.circlepath"},
    Presentation{"integrations", "Integrations", "puzzlepiece.extension"},
    Presentation{"preferences", "Preferences", "gearshape"},
    Presentation{"notificationLab", "Notification Lab", "bell.badge"},
};

const Presentation& presentation(SidebarSection section) {
    return presentations.at(static_cast<std::size_t>(section));
}

}  // namespace

std::string_view rawValue(SidebarSection section) {
    return presentation(section).rawValue;
}

std::string_view title(SidebarSection section) {
    return presentation(section).title;
}

std::string_view symbolName(SidebarSection section) {
    return presentation(section).symbolName;
}

}  // namespace cairnfield
