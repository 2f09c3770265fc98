// Starting, the reconciliation loop on a clock that the test steps, and pausing.

#include "support/App/AppHarness.h"

#include <gtest/gtest.h>

#include <atomic>

namespace cairnfield {
namespace {

class CountingMeasurer final : public TreeMeasuring {
public:
    DirectoryScanResult measure(const FilePath& root, std::stop_token) override {
        ++walks;
        DirectoryScanResult result;
        result.url = root.standardized();
        return result;  // dated long ago, so that no cache entry is ever fresh
    }
    std::int64_t allocatedSize(const FilePath&) override { return 0; }

    std::atomic<int> walks = 0;
};

struct Monitoring : testing::Test {
    CountingMeasurer measurer;
    AppHarness app{{.treeMeasurer = &measurer}};

    Monitoring() {
        app.run(app.model->addWatchedFolder(app.home.makeDirectory("projects")));
        measurer.walks = 0;
    }

    void waitForSleepers(std::size_t count) {
        app.loop.runUntil([&] { return app.continuousClock.sleepers() == count; });
    }
};

TEST_F(Monitoring, FollowsTheSettingAtStart) {
    app.settings.monitoringEnabled.set(false);
    app.run(app.model->start());
    EXPECT_FALSE(app.model->state().isMonitoring.get());
    EXPECT_EQ(app.continuousClock.sleepers(), 0U);
}

TEST_F(Monitoring, TwoQuickStartsMakeOneLoop) {
    app.model->startMonitoring();
    app.model->startMonitoring();
    waitForSleepers(1);
    EXPECT_TRUE(app.model->state().isMonitoring.get());
    EXPECT_EQ(app.continuousClock.sleepers(), 1U);
}

TEST_F(Monitoring, ScansEveryReconciliationInterval) {
    app.model->startMonitoring();
    waitForSleepers(1);
    app.continuousClock.advance(std::chrono::hours(6) - std::chrono::minutes(1));
    EXPECT_EQ(measurer.walks, 0);
    app.continuousClock.advance(std::chrono::minutes(1));
    app.loop.runUntil([&] { return measurer.walks == 1 && app.continuousClock.sleepers() == 1; });
    EXPECT_EQ(measurer.walks, 1);
}

TEST_F(Monitoring, AnIntervalBelowOneHourIsOneHour) {
    for (const std::int64_t hours : {0, -5}) {
        app.settings.reconcileIntervalHours.set(hours);
        measurer.walks = 0;
        app.model->startMonitoring();
        waitForSleepers(1);
        app.continuousClock.advance(std::chrono::minutes(59));
        EXPECT_EQ(measurer.walks, 0);
        app.continuousClock.advance(std::chrono::minutes(1));
        app.loop.runUntil([&] { return measurer.walks == 1 && app.continuousClock.sleepers() == 1; });
        app.model->pauseMonitoring();
        waitForSleepers(0);
    }
}

TEST_F(Monitoring, AChangedIntervalTakesEffectAtTheNextTurn) {
    app.model->startMonitoring();
    waitForSleepers(1);
    app.settings.reconcileIntervalHours.set(1);
    app.continuousClock.advance(std::chrono::hours(5));
    EXPECT_EQ(measurer.walks, 0);
    app.continuousClock.advance(std::chrono::hours(1));
    app.loop.runUntil([&] { return measurer.walks == 1 && app.continuousClock.sleepers() == 1; });
    app.continuousClock.advance(std::chrono::hours(1));
    app.loop.runUntil([&] { return measurer.walks == 2 && app.continuousClock.sleepers() == 1; });
    EXPECT_EQ(measurer.walks, 2);
}

TEST_F(Monitoring, PausingEndsTheLoop) {
    app.model->startMonitoring();
    waitForSleepers(1);
    app.model->pauseMonitoring();
    waitForSleepers(0);
    EXPECT_FALSE(app.model->state().isMonitoring.get());
    EXPECT_EQ(measurer.walks, 0);
}

}  // namespace
}  // namespace cairnfield
