#include "Features/Root/SidebarSection.h"
#include "Shared/Components/SymbolTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

TEST(SidebarSection, ListsEightSectionsInOrder) {
    std::vector<std::string> titles;
    for (const SidebarSection section : visibleSections) titles.emplace_back(title(section));
    EXPECT_EQ(titles, (std::vector<std::string>{"Overview", "Worktrees", "Watched Folders", "Developer Files",
                                                "Recovery", "History", "Integrations", "Preferences"}));
}

TEST(SidebarSection, KeepsTheNotificationLabWithoutARow) {
    EXPECT_EQ(std::ranges::count(visibleSections, SidebarSection::notificationLab), 0);
    EXPECT_EQ(rawValue(SidebarSection::notificationLab), "notificationLab");
    EXPECT_EQ(title(SidebarSection::notificationLab), "Notification Lab");
    EXPECT_EQ(symbolName(SidebarSection::notificationLab), "bell.badge");
}

TEST(SidebarSection, CallsEachSectionByItsRawValue) {
    std::vector<std::string> names;
    for (const SidebarSection section : visibleSections) names.emplace_back(rawValue(section));
    EXPECT_EQ(names, (std::vector<std::string>{"overview", "worktrees", "watchedFolders", "developerFiles",
                                               "recovery", "history", "integrations", "preferences"}));
}

TEST(SidebarSection, HasAPictureForEachSymbol) {
    for (const SidebarSection section : visibleSections)
        EXPECT_FALSE(symbolFile(symbolName(section)).empty()) << symbolName(section);
}

}  // namespace
}  // namespace cairnfield
