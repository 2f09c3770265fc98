#include "App/AppModel.h"

#include "Services/Storage/ThresholdRecommendationService.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

void logUnexpectedFailure(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (...) {
        Log::app().error("An operation failed: {}", describeCurrentException());
    }
}

}  // namespace

AppModel::AppModel(SettingsStore& settings, AppEnvironment environment)
    : Isolated(environment.mainThread),
      settings_(settings),
      environment_(std::move(environment)),
      scanner_(environment_.pool, environment_.walking, environment_.treeMeasurer, environment_.wallClock),
      folderStore_(environment_.pool, environment_.support, environment_.wallClock),
      activityDetector_(environment_.wallClock),
      operations_(logUnexpectedFailure) {}

AppModel::~AppModel() = default;

StorageThresholds AppModel::thresholds() const {
    return settings_.thresholds(state_.storage.get());
}

StorageLevel AppModel::storageLevel() const {
    const std::optional<StorageSnapshot>& snapshot = state_.storage.get();
    if (!snapshot) return StorageLevel::normal;
    return ThresholdRecommendationService::level(snapshot->availableCapacity, thresholds());
}

Task<> AppModel::start() {
    if (reconcileTask_) co_return;
    configureGitServices();
    co_await loadPersistedState();
    if (settings_.monitoringEnabled.get()) startMonitoring();
    co_await refreshIntegrations();
}

Task<> AppModel::stop() {
    operations_.cancel();
    co_await scanner_.stop();
    co_await operations_.join();
}

Task<> AppModel::loadPersistedState() {
    co_await reloadFolders();
}

void AppModel::startMonitoring() {
    assertIsolated();
    if (state_.isMonitoring.get()) return;
    state_.isMonitoring.set(true);
    startReconciliation();
}

void AppModel::pauseMonitoring() {
    assertIsolated();
    std::exchange(reconcileTask_, {}).cancel();
    cancelSizing();
    state_.isMonitoring.set(false);
}

void AppModel::startReconciliation() {
    if (reconcileTask_) return;
    reconcileTask_ = operations_.add(environment_.mainThread, reconcile());
}

Task<> AppModel::reconcile() {
    for (;;) {
        const std::int64_t hours = std::max<std::int64_t>(settings_.reconcileIntervalHours.get(), 1);
        co_await environment_.continuousClock.sleep(std::chrono::hours(hours));
        co_await scanAllFolders(false);
    }
}

void AppModel::run(Task<> operation) {
    operations_.add(environment_.mainThread, std::move(operation));
}

}  // namespace cairnfield
