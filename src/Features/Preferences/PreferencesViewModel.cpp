#include "Features/Preferences/PreferencesViewModel.h"

#include "Features/Presentation/QtText.h"
#include "Persistence/StoredFileNames.h"
#include "Services/Storage/ThresholdRecommendationService.h"
#include "Services/Updates/AppVersion.h"
#include "Services/Updates/UpdateChecking.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"

#include <algorithm>
#include <array>

namespace cairnfield {

namespace {

constexpr std::array modes{ThresholdMode::smart, ThresholdMode::percentage, ThresholdMode::absolute};

std::vector<FractionSetting::Option> thresholdPresets() {
    std::vector<FractionSetting::Option> options;
    options.reserve(allThresholdPresets.size());
    for (const ThresholdPreset preset : allThresholdPresets)
        options.push_back({rawValue(preset), shown(title(preset))});
    return options;
}

std::vector<FractionSetting::Option> growthFractions() {
    return {{0.1, "10%"}, {0.25, "25%"}, {0.5, "50%"}, {1.0, "100%"}};
}

}  // namespace

PreferencesViewModel::PreferencesViewModel(AppModel& model, const WallClock& clock,
                                           const BundleInformation& bundle, QObject* parent)
    : QObject(parent),
      model_(model),
      settings_(model.settings()),
      clock_(clock),
      version_(shown(AppVersion::shortVersion(bundle))),
      launchesAtLogin_(model.launchAtLoginEnabled()),
      warningPercentage_(settings_.warningPercentage, thresholdPresets()),
      criticalPercentage_(settings_.criticalPercentage, thresholdPresets()),
      warningBytes_(settings_.warningAbsoluteBytes),
      criticalBytes_(settings_.criticalAbsoluteBytes),
      rescanInterval_(settings_.rescanIntervalMinutes, {5, 240, 5},
                      "Rescan a changed folder at most every %1 min"),
      reconcileInterval_(settings_.reconcileIntervalHours, {1, 24, 1}, "Reconcile every %1 h"),
      growthBytes_(settings_.growthAbsoluteBytes),
      growthFraction_(settings_.growthRelativeFraction, growthFractions()),
      draftPullRequests_(settings_.createDraftPullRequests),
      smallLocalFiles_(settings_.preserveSmallLocalFiles),
      vaultRetention_(settings_.recoveryVaultRetentionDays, {7, 365, 7},
                      "Keep Recovery Vault files for %1 days") {
    const AppState& state = model.state();
    const auto freeSpace = [this] { emit freeSpaceChanged(); };
    const auto notifications = [this] { emit notificationsChanged(); };
    subscriptions_.push_back(state.storedFileNotices.observe([this] { emit fileNoticeChanged(); }));
    subscriptions_.push_back(state.storage.observe(freeSpace));
    subscriptions_.push_back(settings_.thresholdMode.observe(freeSpace));
    subscriptions_.push_back(settings_.warningPercentage.observe(freeSpace));
    subscriptions_.push_back(settings_.criticalPercentage.observe(freeSpace));
    subscriptions_.push_back(settings_.warningAbsoluteBytes.observe(freeSpace));
    subscriptions_.push_back(settings_.criticalAbsoluteBytes.observe(freeSpace));
    subscriptions_.push_back(state.isMonitoring.observe([this] { emit monitoringChanged(); }));
    subscriptions_.push_back(settings_.launchAtLogin.observe([this] { refresh(); }));
    subscriptions_.push_back(settings_.notificationsEnabled.observe(notifications));
    subscriptions_.push_back(state.notificationAuthorizationDenied.observe(notifications));
    subscriptions_.push_back(model.updates().observe([this] { emit updatesChanged(); }));
    subscriptions_.push_back(settings_.recoveryBranchPrefix.observe([this] { emit branchPrefixChanged(); }));
}

QString PreferencesViewModel::fileNotice() const {
    return shown(model_.state().storedFileNotice(StoredFileNames::settings));
}

QStringList PreferencesViewModel::thresholdModes() {
    QStringList titles;
    for (const ThresholdMode mode : modes) titles.append(shown(title(mode)));
    return titles;
}

int PreferencesViewModel::thresholdModeIndex() const {
    return static_cast<int>(std::ranges::find(modes, settings_.thresholdMode.get()) - modes.begin());
}

QString PreferencesViewModel::thresholdMode() const {
    return shown(rawValue(settings_.thresholdMode.get()));
}

QString PreferencesViewModel::explanation() const {
    const std::optional<StorageSnapshot>& snapshot = model_.state().storage.get();
    if (!snapshot || settings_.thresholdMode.get() != ThresholdMode::smart) return {};
    return shown(ThresholdRecommendationService::explanation(snapshot->totalCapacity));
}

QString PreferencesViewModel::currently() const {
    const std::optional<StorageSnapshot>& snapshot = model_.state().storage.get();
    if (!snapshot) return {};
    const StorageThresholds limits = settings_.thresholds(snapshot);
    return "Warn below " + shown(ByteFormatting::string(limits.warningBytes)) + ", critical below " +
           shown(ByteFormatting::string(limits.criticalBytes));
}

bool PreferencesViewModel::areNotificationsDenied() const {
    return model_.state().notificationAuthorizationDenied.get();
}

QString PreferencesViewModel::updateProblem() const {
    return shown(model_.updates().configurationProblem().value_or(""));
}

bool PreferencesViewModel::checksForUpdates() const {
    return model_.updates().automaticallyChecksForUpdates();
}

bool PreferencesViewModel::downloadsUpdates() const {
    return model_.updates().automaticallyDownloadsUpdates();
}

QString PreferencesViewModel::lastChecked() const {
    return shown(DateFormatting::relative(model_.updates().lastUpdateCheckDate(), clock_.now()));
}

bool PreferencesViewModel::canCheckForUpdates() const {
    return model_.updates().canCheckForUpdates();
}

QString PreferencesViewModel::branchPrefix() const {
    return shown(settings_.recoveryBranchPrefix.get());
}

void PreferencesViewModel::setBranchPrefix(const QString& prefix) {
    settings_.recoveryBranchPrefix.setWhileTyping(prefix.toStdString());
}

void PreferencesViewModel::doneTyping() {
    settings_.recoveryBranchPrefix.doneTyping();
}

void PreferencesViewModel::chooseThresholdMode(int index) {
    if (index < 0 || index >= static_cast<int>(modes.size())) return;
    settings_.thresholdMode.set(modes.at(static_cast<std::size_t>(index)));
}

void PreferencesViewModel::setMonitoring(bool isOn) {
    model_.setMonitoring(isOn);
}

void PreferencesViewModel::setLaunchAtLogin(bool isOn) {
    model_.setLaunchAtLogin(isOn);
    refresh();
}

void PreferencesViewModel::setNotifies(bool isOn) {
    if (isOn) {
        model_.run(model_.enableNotifications());
    } else {
        settings_.notificationsEnabled.set(false);
    }
}

void PreferencesViewModel::setChecksForUpdates(bool isOn) {
    model_.updates().setAutomaticallyChecksForUpdates(isOn);
}

void PreferencesViewModel::setDownloadsUpdates(bool isOn) {
    model_.updates().setAutomaticallyDownloadsUpdates(isOn);
}

void PreferencesViewModel::checkForUpdates() {
    model_.updates().checkForUpdates();
}

void PreferencesViewModel::refresh() {
    const bool isEnabled = model_.launchAtLoginEnabled();
    if (isEnabled != launchesAtLogin_) {
        launchesAtLogin_ = isEnabled;
        emit launchAtLoginChanged();
    }
    emit updatesChanged();
}

}  // namespace cairnfield
