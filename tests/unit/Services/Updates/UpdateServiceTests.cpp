#include "Services/Updates/UpdateService.h"
#include "Shared/Concurrency/RunLoop.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

class StagedUpdater final : public Updater {
public:
    void start() override { ++starts; }
    void observeCanCheckForUpdates(std::function<void(bool)> observer) override {
        tell = std::move(observer);
        tell(canCheck);
    }
    [[nodiscard]] bool automaticallyChecksForUpdates() const override { return checks; }
    void setAutomaticallyChecksForUpdates(bool isOn) override { checks = isOn; }
    [[nodiscard]] bool automaticallyDownloadsUpdates() const override { return downloads; }
    void setAutomaticallyDownloadsUpdates(bool isOn) override { downloads = isOn; }
    [[nodiscard]] std::optional<Date> lastUpdateCheckDate() const override { return lastCheck; }
    void checkForUpdates() override { ++checksMade; }

    int starts = 0;
    int checksMade = 0;
    bool canCheck = true;
    bool checks = false;
    bool downloads = false;
    std::optional<Date> lastCheck;
    std::function<void(bool)> tell;
};

BundleInformation bundleWith(std::optional<BundleInformation::Value> feed,
                             std::optional<BundleInformation::Value> key) {
    std::map<std::string, BundleInformation::Value, std::less<>> values;
    if (feed) values["SUFeedURL"] = *feed;
    if (key) values["SUPublicEDKey"] = *key;
    return BundleInformation(values);
}

const std::string feed = "https://updates.example.org/feed.xml";
const std::string key = "c2VjcmV0";

class UpdateServiceTest : public testing::Test {
protected:
    void TearDown() override { drain(); }
    /// Lets everything happen that is under way.
    void drain() {
        struct Mark : Work {
            bool isReached = false;
        } mark;
        mark.run = [](Work* work) noexcept { static_cast<Mark*>(work)->isReached = true; };
        loop.post(&mark);
        ASSERT_TRUE(loop.runUntil([&] { return mark.isReached; }));
    }

    RunLoop loop;
    StagedUpdater updater;

    std::optional<std::string> problemWith(const BundleInformation& bundle) {
        return UpdateService(updater, bundle, loop).configurationProblem();
    }
};

TEST_F(UpdateServiceTest, SaysWhatIsMissing) {
    EXPECT_EQ(problemWith(bundleWith({}, {})),
              "No appcast feed or signing key is configured yet, so Cairnfield cannot check for updates.");
    EXPECT_EQ(problemWith(bundleWith({}, key)), "No appcast feed URL is configured (SUFeedURL).");
    EXPECT_EQ(
        problemWith(bundleWith(feed, {})),
        "No update signing key is configured (SUPublicEDKey). Updates would be unverifiable, so checking is "
        "disabled.");
    EXPECT_EQ(problemWith(bundleWith(feed, key)), std::nullopt);
}

TEST_F(UpdateServiceTest, TakesEmptyTextAndWhatIsNoTextForNothing) {
    EXPECT_EQ(problemWith(bundleWith("", key)), "No appcast feed URL is configured (SUFeedURL).");
    EXPECT_EQ(problemWith(bundleWith(std::int64_t{7}, key)),
              "No appcast feed URL is configured (SUFeedURL).");
    EXPECT_EQ(problemWith(bundleWith(feed, ""))->substr(0, 32), "No update signing key is configu");
    EXPECT_EQ(problemWith(bundleWith(true, ""))->substr(0, 32), "No appcast feed or signing key i");
    EXPECT_EQ(UpdateService(updater, bundleWith("", key), loop).feedURLString(), std::nullopt);
    EXPECT_EQ(updater.starts, 0);
}

TEST_F(UpdateServiceTest, NeverStartsAnUpdaterThatCouldNotVerify) {
    for (const BundleInformation& bundle :
         {bundleWith({}, {}), bundleWith({}, key), bundleWith(feed, {}), bundleWith("", "")}) {
        UpdateService updates(updater, bundle, loop);
        updates.checkForUpdates();
        drain();
        EXPECT_FALSE(updates.canCheckForUpdates());
    }
    EXPECT_EQ(updater.starts, 0);
    EXPECT_EQ(updater.checksMade, 0);
    EXPECT_FALSE(updater.tell) << "it is not even watched";
}

TEST_F(UpdateServiceTest, StartsTheUpdaterOnceAndChecksWhenAsked) {
    UpdateService updates(updater, bundleWith(feed, key), loop);
    EXPECT_EQ(updater.starts, 1);
    EXPECT_EQ(updater.checksMade, 0) << "nothing by itself";
    EXPECT_EQ(updates.feedURLString(), feed);
    updates.checkForUpdates();
    EXPECT_EQ(updater.checksMade, 1);
}

TEST_F(UpdateServiceTest, TakesWhatTheUpdaterSaysOnTheMainThreadAlone) {
    UpdateService updates(updater, bundleWith(feed, key), loop);
    EXPECT_FALSE(updates.canCheckForUpdates()) << "false until it came round";
    int changes = 0;
    const Subscription subscription = updates.observe([&] {
        EXPECT_TRUE(loop.isCurrent());
        ++changes;
    });
    ASSERT_TRUE(loop.runUntil([&] { return updates.canCheckForUpdates(); }));
    std::thread([this] { updater.tell(false); }).join();
    EXPECT_TRUE(updates.canCheckForUpdates());
    ASSERT_TRUE(loop.runUntil([&] { return !updates.canCheckForUpdates(); }));
    EXPECT_EQ(changes, 2);
}

TEST_F(UpdateServiceTest, MayBeGoneWhenAnAnswerArrives) {
    std::optional<UpdateService> updates(std::in_place, updater, bundleWith(feed, key), loop);
    ASSERT_TRUE(loop.runUntil([&] { return updates->canCheckForUpdates(); }));
    updater.tell(false);
    updates.reset();
    updater.tell(true);
    drain();
}

TEST_F(UpdateServiceTest, LeavesTheSwitchesToTheUpdater) {
    UpdateService updates(updater, bundleWith(feed, key), loop);
    int changes = 0;
    const Subscription subscription = updates.observe([&] { ++changes; });
    updates.setAutomaticallyChecksForUpdates(true);
    updates.setAutomaticallyDownloadsUpdates(true);
    EXPECT_TRUE(updater.checks);
    EXPECT_TRUE(updater.downloads);
    EXPECT_EQ(changes, 2);
    updater.checks = false;
    updater.lastCheck = Date(1'000'000'000s);
    EXPECT_FALSE(updates.automaticallyChecksForUpdates());
    EXPECT_TRUE(updates.automaticallyDownloadsUpdates());
    EXPECT_EQ(updates.lastUpdateCheckDate(), Date(1'000'000'000s));
}

}  // namespace
}  // namespace cairnfield
