#include "App/AppModel.h"

#include "App/CleanupServices.h"
#include "App/NotificationCenterDelegate.h"
#include "App/NotificationOutbox.h"
#include "App/StillNews.h"
#include "Platform/NotificationCenter.h"
#include "Services/FileSystem/ChangeDebouncer.h"
#include "Services/FileSystem/FileSystemEventMonitoring.h"
#include "Services/Notifications/NotificationDelivering.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

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

Task<> publish(Published<StoredFileNotices::ByFile>& shown, const StoredFileNotices& notices) {
    shown.set(notices.all());
    co_return;
}

}  // namespace

AppModel::AppModel(SettingsStore& settings, AppEnvironment environment)
    : Isolated(environment.mainThread),
      settings_(settings),
      environment_(std::move(environment)),
      scanner_(environment_.pool, environment_.walking, environment_.treeMeasurer, environment_.wallClock),
      folderStore_(environment_.blocking, environment_.support, environment_.wallClock),
      historyStore_(environment_.blocking, environment_.support),
      activityDetector_(environment_.wallClock),
      cleanup_(std::make_unique<CleanupServices>(environment_, settings.recoveryVaultMaxFileBytes.get())),
      answering_(static_cast<NotificationAnswering*>(this), [](NotificationAnswering*) {}),
      operations_(logUnexpectedFailure),
      outbox_(std::make_unique<NotificationOutbox>(
          environment_.mainThread, operations_, environment_.notifications, environment_.notificationCenter,
          NotificationOutbox::Judgement{
              .tried =
                  [this](const std::optional<std::string>& failure) {
                      state_.notificationAuthorizationDenied.set(failure.has_value());
                      state_.lastNotificationError.set(failure);
                  },
              .isStillNews =
                  [this](const NotificationRequestPayload& payload) {
                      return settings_.notificationsEnabled.get() &&
                             isStillNews(payload, state_, environment_.wallClock.now());
                  }})) {
    // The stores report from their own threads.
    StoredFileNotices& notices = *environment_.support.notices();
    notices.onChange([this, &notices] {
        operations_.add(environment_.mainThread, publish(state_.storedFileNotices, notices));
    });
    state_.storedFileNotices.set(notices.all());
}

AppModel::~AppModel() = default;

Task<> AppModel::start() {
    if (monitorTask_) co_return;
    configureGitServices();
    co_await refreshStorage();
    co_await loadPersistedState();
    co_await listenToAnswers();
    if (settings_.monitoringEnabled.get()) startMonitoring();
    co_await refreshIntegrations();
}

Task<> AppModel::listenToAnswers() {
    notificationDelegate_ = std::make_shared<NotificationCenterDelegate>(answering_, environment_.application,
                                                                         environment_.workspace);
    NotificationCenterDelegate::install(notificationDelegate_, environment_.notificationCenter);
    co_await environment_.notifications.registerCategories();
}

Task<> AppModel::stop() {
    isEnding_ = true;
    environment_.support.notices()->onChange(nullptr);
    operations_.cancel();
    answering_.reset();
    environment_.notificationCenter.onResponse(nullptr);
    outbox_->end();
    if (eventMonitor_) {
        eventMonitor_->stop();
        co_await eventMonitor_->finished();
    }
    if (debouncer_) co_await debouncer_->finished();
    co_await scanner_.stop();
    co_await operations_.join();
}

Task<> AppModel::loadPersistedState() {
    std::vector<StorageHistorySample> history = co_await historyStore_.samples();
    state_.storageHistory.set(std::move(history));
    co_await reloadFolders();
    co_await reloadCleanupRecords();
    restartFileSystemWatching();
}

void AppModel::run(Task<> operation) {
    operations_.add(environment_.mainThread, std::move(operation));
}

}  // namespace cairnfield
