#include "Services/Updates/DisabledUpdateService.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(DisabledUpdateService, SaysWhyThereAreNoUpdates) {
    DisabledUpdateService updates;
    EXPECT_EQ(updates.configurationProblem(), "Updates are disabled in this build.");
    EXPECT_FALSE(updates.canCheckForUpdates());
    EXPECT_EQ(updates.lastUpdateCheckDate(), std::nullopt);
    EXPECT_EQ(updates.feedURLString(), std::nullopt);
    updates.checkForUpdates();
    EXPECT_FALSE(updates.canCheckForUpdates());
    EXPECT_EQ(updates.lastUpdateCheckDate(), std::nullopt);
}

TEST(DisabledUpdateService, KeepsWhatIsWrittenToItsSwitchesAndDoesNothingElseWithIt) {
    DisabledUpdateService updates;
    EXPECT_FALSE(updates.automaticallyChecksForUpdates());
    EXPECT_FALSE(updates.automaticallyDownloadsUpdates());
    int changes = 0;
    const Subscription subscription = updates.observe([&] { ++changes; });
    updates.setAutomaticallyChecksForUpdates(true);
    EXPECT_TRUE(updates.automaticallyChecksForUpdates());
    EXPECT_FALSE(updates.automaticallyDownloadsUpdates());
    updates.setAutomaticallyDownloadsUpdates(true);
    updates.setAutomaticallyChecksForUpdates(false);
    EXPECT_TRUE(updates.automaticallyDownloadsUpdates());
    EXPECT_FALSE(updates.automaticallyChecksForUpdates());
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(updates.configurationProblem(), "Updates are disabled in this build.");
    EXPECT_FALSE(updates.canCheckForUpdates());
}

}  // namespace
}  // namespace cairnfield
