#include "App/AppModel.h"
#include "Services/FileSystem/FileSystemEventMonitoring.h"
#include "Services/Storage/StorageTrend.h"
#include "Services/Storage/ThresholdRecommendationService.h"
#include "Services/Storage/VolumeCapacityReading.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Logging/Log.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds capacityPollInterval{300};
constexpr std::chrono::seconds day{86'400};
constexpr std::chrono::seconds week{604'800};
constexpr int chartPoints = 180;
constexpr std::int64_t longestReconcileHours = 1'000'000;  ///< what a clock's nanoseconds hold with ease

/// A sleep that is cut short is a sleep that is over: the loops ask themselves whether to go on.
Task<> sleepUnlessCancelled(ContinuousClock& clock, ContinuousClock::Duration duration) {
    try {
        co_await clock.sleep(duration);
    } catch (const Cancelled&) {
    }
}

}  // namespace

StorageThresholds AppModel::thresholds() const {
    return settings_.thresholds(state_.storage.get());
}

StorageLevel AppModel::storageLevel() const {
    const std::optional<StorageSnapshot>& snapshot = state_.storage.get();
    if (!snapshot) return StorageLevel::normal;
    return ThresholdRecommendationService::level(snapshot->availableCapacity, thresholds());
}

std::optional<std::int64_t> AppModel::freeSpaceDelta() const {
    return StorageTrend::delta(state_.storageHistory.get(), day, environment_.wallClock.now());
}

std::vector<StorageHistorySample> AppModel::freeSpaceSeries() const {
    return StorageTrend::series(state_.storageHistory.get(), week, chartPoints, environment_.wallClock.now());
}

std::optional<Date> AppModel::projectedFullDate() const {
    return StorageTrend::projectedFullDate(state_.storageHistory.get(), week, environment_.wallClock.now());
}

std::string AppModel::menuBarSymbolName() const {
    switch (storageLevel()) {
        case StorageLevel::normal:
            return "internaldrive";
        case StorageLevel::warning:
            return "exclamationmark.triangle";
        case StorageLevel::critical:
            return "exclamationmark.octagon";
    }
    return {};
}

std::string AppModel::menuBarAccessibilityValue() const {
    const std::optional<StorageSnapshot>& snapshot = state_.storage.get();
    if (!snapshot) return "Cairnfield: checking storage";
    const std::string free = ByteFormatting::string(std::max<std::int64_t>(snapshot->availableCapacity, 0));
    return "Cairnfield: " + free + " free, " + std::string(title(storageLevel()));
}

void AppModel::startMonitoring() {
    assertIsolated();
    if (monitorTask_) return;
    state_.isMonitoring.set(true);
    monitorTask_ = operations_.add(environment_.mainThread, pollCapacity());
    if (!reconcileTask_) reconcileTask_ = operations_.add(environment_.mainThread, reconcile());
    restartFileSystemWatching();
}

void AppModel::pauseMonitoring() {
    assertIsolated();
    std::exchange(monitorTask_, {}).cancel();
    std::exchange(reconcileTask_, {}).cancel();
    cancelSizing();
    if (eventMonitor_) eventMonitor_->stop();
    state_.isMonitoring.set(false);
}

void AppModel::setMonitoring(bool isOn) {
    if (isOn) {
        settings_.monitoringEnabled.set(true);
        startMonitoring();
    } else {
        pauseMonitoring();
        settings_.monitoringEnabled.set(false);
    }
}

Task<> AppModel::pollCapacity() {
    const std::stop_token stop = co_await currentStopToken();
    while (!stop.stop_requested()) {
        co_await sleepUnlessCancelled(environment_.continuousClock, capacityPollInterval);
        if (isEnding_) co_return;
        // A task of its own, since pausing cancels this one and still takes a last reading.
        const TaskHandle<> reading = operations_.add(environment_.mainThread, refreshStorage());
        try {
            co_await reading.value();
        } catch (const std::exception&) {
            // Logged by the scope; whatever it was, the next reading comes.
        }
    }
}

Task<> AppModel::reconcile() {
    const std::stop_token stop = co_await currentStopToken();
    for (;;) {
        const std::int64_t hours =
            std::clamp<std::int64_t>(settings_.reconcileIntervalHours.get(), 1, longestReconcileHours);
        co_await sleepUnlessCancelled(environment_.continuousClock, std::chrono::hours(hours));
        if (stop.stop_requested()) co_return;
        co_await scanAllFolders(false);
    }
}

Task<> AppModel::refreshStorage() {
    std::optional<StorageSnapshot> snapshot;
    const auto read = [this] { return environment_.capacityReader.snapshot(environment_.home); };
    try {
        snapshot = co_await runOn(environment_.blocking, read);
    } catch (const std::exception& error) {
        const std::string message = describe(error);
        state_.lastStorageError.set(message);
        Log::storage().error("Capacity read failed: {}", message);
        co_return;
    }
    state_.storage.set(snapshot);
    state_.lastStorageError.set(std::nullopt);
    std::vector<StorageHistorySample> history = co_await historyStore_.record(*snapshot);
    state_.storageHistory.set(std::move(history));
    co_await evaluateIncident(*snapshot);
}

Task<> AppModel::scanNow() {
    co_await refreshStorage();
    co_await scanAllFolders(true);
    co_await refreshWorktrees(true);
}

}  // namespace cairnfield
