// The reconciliation loop on a clock that the test steps, and pausing.

#include "support/App/AppHarness.h"
#include "support/CountingMeasurer.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using Durations = std::vector<SteppedClock::Duration>;
using std::chrono::hours;
using std::chrono::seconds;

struct Monitoring : testing::Test {
    /// Long ago, so that no cache entry is ever fresh.
    SettableWallClock measurerClock{Date{}};
    CountingMeasurer measurer{measurerClock};
    AppHarness app{{.treeMeasurer = &measurer}};

    Monitoring() {
        app.run(app.model->addWatchedFolder(app.home.makeDirectory("projects")));
        measurer.walks = 0;
    }

    void waitForSleepers(std::size_t count) {
        app.waitUntil([&] { return app.continuousClock.sleepers() == count; });
    }
};

TEST_F(Monitoring, FollowsTheSettingAtStart) {
    app.settings.monitoringEnabled.set(false);
    app.run(app.model->start());
    EXPECT_FALSE(app.model->state().isMonitoring.get());
    EXPECT_EQ(app.continuousClock.sleepers(), 0U);
}

TEST_F(Monitoring, TwoQuickStartsMakeTheLoopsOnce) {
    app.model->startMonitoring();
    app.model->startMonitoring();
    waitForSleepers(2);
    EXPECT_TRUE(app.model->state().isMonitoring.get());
    EXPECT_EQ(app.continuousClock.sleepers(), 2U);
}

TEST_F(Monitoring, SleepsFiveMinutesBetweenReadingsAndTheIntervalBetweenScans) {
    app.model->startMonitoring();
    waitForSleepers(2);
    EXPECT_EQ(app.continuousClock.wakesIn(), (Durations{seconds(300), hours(6)}));
    app.continuousClock.advance(seconds(300));
    app.waitUntil([&] { return app.model->state().storage.get() && app.continuousClock.sleepers() == 2; });
    EXPECT_EQ(app.continuousClock.wakesIn(), (Durations{seconds(300), hours(6) - seconds(300)}));
}

TEST_F(Monitoring, ScansWhenTheReconciliationIntervalIsOver) {
    app.model->startMonitoring();
    waitForSleepers(2);
    app.continuousClock.advance(hours(6));
    app.waitUntil([&] { return measurer.walks == 1 && app.continuousClock.sleepers() == 2; });
    EXPECT_EQ(measurer.walks, 1);
}

TEST_F(Monitoring, AnIntervalBelowOneHourIsOneHour) {
    for (const std::int64_t interval : {0, -5}) {
        app.settings.reconcileIntervalHours.set(interval);
        measurer.walks = 0;
        app.model->startMonitoring();
        waitForSleepers(2);
        EXPECT_EQ(app.continuousClock.wakesIn(), (Durations{seconds(300), hours(1)}));
        app.continuousClock.advance(hours(1));
        app.waitUntil([&] { return measurer.walks == 1 && app.continuousClock.sleepers() == 2; });
        app.model->pauseMonitoring();
        waitForSleepers(0);
    }
}

TEST_F(Monitoring, AChangedIntervalTakesEffectAtTheNextTurn) {
    app.model->startMonitoring();
    waitForSleepers(2);
    app.settings.reconcileIntervalHours.set(1);
    EXPECT_EQ(app.continuousClock.wakesIn().back(), hours(6));
    app.continuousClock.advance(hours(6));
    app.waitUntil([&] { return measurer.walks == 1 && app.continuousClock.sleepers() == 2; });
    EXPECT_EQ(app.continuousClock.wakesIn().back(), hours(1));
    app.continuousClock.advance(hours(1));
    app.waitUntil([&] { return measurer.walks == 2 && app.continuousClock.sleepers() == 2; });
    EXPECT_EQ(measurer.walks, 2);
}

TEST_F(Monitoring, PausingEndsTheLoop) {
    app.model->startMonitoring();
    waitForSleepers(2);
    app.model->pauseMonitoring();
    waitForSleepers(0);
    EXPECT_FALSE(app.model->state().isMonitoring.get());
    EXPECT_EQ(measurer.walks, 0);
}

}  // namespace
}  // namespace cairnfield
