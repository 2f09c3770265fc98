#include "App/AppModel.h"
#include "App/NotificationOutbox.h"
#include "Services/Notifications/Notification.h"
#include "Services/Notifications/NotificationCatalogue.h"
#include "Shared/Logging/Log.h"

#include <utility>

namespace cairnfield {

namespace {

constexpr std::int64_t growthWindowHours = 24;

}  // namespace

Task<> AppModel::evaluateIncident(StorageSnapshot snapshot) {
    const StorageThresholds limits = settings_.thresholds(snapshot);
    std::optional<StorageLevel> news;
    state_.incident.mutate([&](StorageIncidentTracker& incident) {
        const StorageIncidentTracker before = incident;
        news = incident.evaluate(snapshot.availableCapacity, snapshot.totalCapacity, limits,
                                 environment_.wallClock.now());
        return incident != before;
    });
    if (!news) co_return;
    Log::storage().info("Storage incident escalated to {}", rawValue(*news));
    if (!settings_.notificationsEnabled.get()) co_return;
    NotificationRequestPayload payload =
        NotificationCatalogue::storageAlert(*news, snapshot, estimatedReclaimableBytes());
    co_await deliver(std::move(payload));
}

Task<> AppModel::evaluateFolderAlerts(WatchedFolder folder) {
    const Date now = environment_.wallClock.now();
    if (!settings_.notificationsEnabled.get() || folder.isSnoozed(now)) co_return;
    if (folder.level() != StorageLevel::normal && folder.lastKnownSizeBytes) {
        NotificationRequestPayload payload = NotificationCatalogue::folderThreshold(folder);
        co_await deliver(std::move(payload));
    }
    if (!folder.growthAlertEnabled) co_return;

    const std::vector<SizeSample> samples = co_await folderStore_.samples(folder.path);
    const GrowthAlertSettings limits{.absoluteBytes = settings_.growthAbsoluteBytes.get(),
                                     .relativeFraction = settings_.growthRelativeFraction.get(),
                                     .windowHours = growthWindowHours};
    const Date then = environment_.wallClock.now();
    if (!GrowthAnalyzer::isAnomalous(samples, limits, then)) co_return;
    const std::int64_t growth = GrowthAnalyzer::growth(samples, growthWindowHours, then).value_or(0);
    NotificationRequestPayload payload =
        NotificationCatalogue::growthAnomaly(folder, growth, growthWindowHours);
    co_await deliver(std::move(payload));
}

Task<std::optional<std::string>> AppModel::deliver(NotificationRequestPayload payload) {
    return outbox_->deliver(std::move(payload));
}

void AppModel::snoozeIncident(int hours) {
    assertIsolated();
    state_.incident.mutate([&](StorageIncidentTracker& incident) {
        incident.snoozedUntil = environment_.wallClock.now() + std::chrono::hours(hours);
        return true;
    });
}

void AppModel::ignoreCurrentIncident() {
    assertIsolated();
    state_.incident.mutate([&](StorageIncidentTracker& incident) {
        incident.snoozedUntil = distantFuture();
        return true;
    });
}

}  // namespace cairnfield
