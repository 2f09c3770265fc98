#include "Shared/Logging/Log.h"
#include "VaultFixture.h"
#include "support/CapturedLog.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using VaultRestore = VaultFixture;

TEST_F(VaultRestore, SuggestsTheFilesOwnName) {
    stage({entry("config/key\xff.pem")});
    screen->restore(0);
    EXPECT_THAT(panel.suggestedNames, ElementsAre("key\xff.pem"));
}

TEST_F(VaultRestore, CopiesTheFileToTheChosenPlaceAndMakesTheFoldersOnTheWay) {
    const std::string content = std::string("SECRET=1\n\0\xff", 11);
    const RecoveryVaultEntry env = entry("config/.env\xff");
    keep({{env, content}});
    screen->restore(0);
    const FilePath place = app.home.path().appending("new/fol\xff/.env\xff");
    panel.choose(place);
    app.waitUntil([&] { return exists(place); });
    EXPECT_EQ(contentOf(place), content);
    EXPECT_EQ(contentOf(env.storedPath), content);
    startAnew();
    EXPECT_EQ(state().vaultEntries.get(), std::vector{env}) << "the entry stays";
}

TEST_F(VaultRestore, ChangesNothingWhenThePanelIsCancelled) {
    const CapturedLog log(Log::cleanup());
    const RecoveryVaultEntry env = entry(".env");
    keep({{env, "SECRET=1"}});
    screen->restore(0);
    panel.cancel();
    startAnew();
    EXPECT_EQ(state().vaultEntries.get(), std::vector{env});
    EXPECT_EQ(contentOf(env.storedPath), "SECRET=1");
    EXPECT_FALSE(exists(app.home.path().appending(".env")));
    EXPECT_EQ(log.text(), "") << "no restore was tried";
}

TEST_F(VaultRestore, NeverReplacesAnythingAndSaysSoInTheLogAlone) {
    const CapturedLog log(Log::cleanup());
    const RecoveryVaultEntry env = entry(".env");
    keep({{env, "SECRET=1"}});
    const FilePath place = app.home.write("mine", "precious");
    screen->restore(0);
    panel.choose(place);
    app.waitUntil([&] { return log.text().find("mine already exists.") != std::string::npos; });
    screen->flush();
    EXPECT_EQ(screen->notice(), "");
    EXPECT_EQ(contentOf(place), "precious");
    EXPECT_EQ(state().vaultEntries.get(), std::vector{env});
    EXPECT_THAT(log.text(), HasSubstr("error: Restoring a vault file to "));
}

TEST_F(VaultRestore, DropsTheFailureOfAMissingCopyAndKeepsTheEntry) {
    const CapturedLog log(Log::cleanup());
    const RecoveryVaultEntry env = entry(".env");
    keep({{env, "SECRET=1"}});
    std::filesystem::remove(env.storedPath.bytes());
    screen->restore(0);
    const FilePath place = app.home.path().appending("restored");
    panel.choose(place);
    app.waitUntil([&] { return log.text().find("The stored copy is missing.") != std::string::npos; });
    screen->flush();
    EXPECT_EQ(screen->notice(), "");
    EXPECT_FALSE(exists(place));
    EXPECT_TRUE(screen->showsList());
}

TEST_F(VaultRestore, RestoresTheFileThatWasAskedForWhateverTheListShowsByThen) {
    const RecoveryVaultEntry env = entry(".env");
    const RecoveryVaultEntry key = entry("key.pem");
    keep({{env, "SECRET=1"}, {key, "KEY"}});
    screen->restore(1);
    stage({key});
    const FilePath place = app.home.path().appending("restored");
    panel.choose(place);
    app.waitUntil([&] { return exists(place); });
    EXPECT_EQ(contentOf(place), "KEY");
}

}  // namespace
}  // namespace cairnfield
