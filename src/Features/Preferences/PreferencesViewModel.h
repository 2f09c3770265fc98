#pragma once
// What the screen of the settings shows and does. Nothing is saved at the end: each change takes effect when
// it is made, though what is typed is not stored with every letter. Main thread only.

#include "App/AppModel.h"
#include "Features/Preferences/SettingModels.h"
#include "Services/Updates/BundleInformation.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace cairnfield {

class PreferencesViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(QString fileNotice READ fileNotice NOTIFY fileNoticeChanged)
    // Free space alerts.
    Q_PROPERTY(QStringList thresholdModes READ thresholdModes CONSTANT)
    Q_PROPERTY(int thresholdModeIndex READ thresholdModeIndex NOTIFY freeSpaceChanged)
    Q_PROPERTY(QString thresholdMode READ thresholdMode NOTIFY freeSpaceChanged)
    Q_PROPERTY(QString explanation READ explanation NOTIFY freeSpaceChanged)
    Q_PROPERTY(QString currently READ currently NOTIFY freeSpaceChanged)
    Q_PROPERTY(cairnfield::FractionSetting* warningPercentage READ warningPercentage CONSTANT)
    Q_PROPERTY(cairnfield::FractionSetting* criticalPercentage READ criticalPercentage CONSTANT)
    Q_PROPERTY(cairnfield::GigabyteSetting* warningBytes READ warningBytes CONSTANT)
    Q_PROPERTY(cairnfield::GigabyteSetting* criticalBytes READ criticalBytes CONSTANT)
    // Monitoring.
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY monitoringChanged)
    Q_PROPERTY(bool launchesAtLogin READ launchesAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(cairnfield::SteppedSetting* rescanInterval READ rescanInterval CONSTANT)
    Q_PROPERTY(cairnfield::SteppedSetting* reconcileInterval READ reconcileInterval CONSTANT)
    // Notifications.
    Q_PROPERTY(bool notifies READ notifies NOTIFY notificationsChanged)
    Q_PROPERTY(bool areNotificationsDenied READ areNotificationsDenied NOTIFY notificationsChanged)
    // Growth alerts.
    Q_PROPERTY(cairnfield::GigabyteSetting* growthBytes READ growthBytes CONSTANT)
    Q_PROPERTY(cairnfield::FractionSetting* growthFraction READ growthFraction CONSTANT)
    // Updates.
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString updateProblem READ updateProblem NOTIFY updatesChanged)
    Q_PROPERTY(bool checksForUpdates READ checksForUpdates NOTIFY updatesChanged)
    Q_PROPERTY(bool downloadsUpdates READ downloadsUpdates NOTIFY updatesChanged)
    Q_PROPERTY(QString lastChecked READ lastChecked NOTIFY updatesChanged)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY updatesChanged)
    // Preservation.
    Q_PROPERTY(cairnfield::SwitchSetting* draftPullRequests READ draftPullRequests CONSTANT)
    Q_PROPERTY(cairnfield::SwitchSetting* smallLocalFiles READ smallLocalFiles CONSTANT)
    Q_PROPERTY(QString branchPrefix READ branchPrefix WRITE setBranchPrefix NOTIFY branchPrefixChanged)
    Q_PROPERTY(cairnfield::SteppedSetting* vaultRetention READ vaultRetention CONSTANT)

public:
    /// The first two outlive the view model.
    PreferencesViewModel(AppModel& model, const WallClock& clock,
                         const BundleInformation& bundle = BundleInformation::ofThisProgram(),
                         QObject* parent = nullptr);

    /// What should be known about the file of the settings; empty while all is well.
    [[nodiscard]] QString fileNotice() const;
    [[nodiscard]] static QStringList thresholdModes();
    [[nodiscard]] int thresholdModeIndex() const;
    [[nodiscard]] QString thresholdMode() const;  ///< its raw value
    /// The smart limits in words; empty in another mode, and before the first reading.
    [[nodiscard]] QString explanation() const;
    /// The limits in force; empty before the first reading.
    [[nodiscard]] QString currently() const;
    [[nodiscard]] FractionSetting* warningPercentage() { return &warningPercentage_; }
    [[nodiscard]] FractionSetting* criticalPercentage() { return &criticalPercentage_; }
    [[nodiscard]] GigabyteSetting* warningBytes() { return &warningBytes_; }
    [[nodiscard]] GigabyteSetting* criticalBytes() { return &criticalBytes_; }

    [[nodiscard]] bool isMonitoring() const { return model_.state().isMonitoring.get(); }
    [[nodiscard]] bool launchesAtLogin() const { return launchesAtLogin_; }
    [[nodiscard]] SteppedSetting* rescanInterval() { return &rescanInterval_; }
    [[nodiscard]] SteppedSetting* reconcileInterval() { return &reconcileInterval_; }

    [[nodiscard]] bool notifies() const { return settings_.notificationsEnabled.get(); }
    [[nodiscard]] bool areNotificationsDenied() const;

    [[nodiscard]] GigabyteSetting* growthBytes() { return &growthBytes_; }
    [[nodiscard]] FractionSetting* growthFraction() { return &growthFraction_; }

    [[nodiscard]] QString version() const { return version_; }
    [[nodiscard]] QString updateProblem() const;  ///< empty when all is well
    [[nodiscard]] bool checksForUpdates() const;
    [[nodiscard]] bool downloadsUpdates() const;
    [[nodiscard]] QString lastChecked() const;
    [[nodiscard]] bool canCheckForUpdates() const;

    [[nodiscard]] SwitchSetting* draftPullRequests() { return &draftPullRequests_; }
    [[nodiscard]] SwitchSetting* smallLocalFiles() { return &smallLocalFiles_; }
    [[nodiscard]] QString branchPrefix() const;
    /// As it is typed: it is in force at once, and stored after a pause or when the typing is done.
    void setBranchPrefix(const QString& prefix);
    Q_INVOKABLE void doneTyping();
    [[nodiscard]] SteppedSetting* vaultRetention() { return &vaultRetention_; }

    Q_INVOKABLE void chooseThresholdMode(int index);
    Q_INVOKABLE void setMonitoring(bool isOn);
    /// What cannot be done leaves the switch where the desktop says.
    Q_INVOKABLE void setLaunchAtLogin(bool isOn);
    /// On asks the desktop for leave, and the switch follows its answer.
    Q_INVOKABLE void setNotifies(bool isOn);
    Q_INVOKABLE void setChecksForUpdates(bool isOn);
    Q_INVOKABLE void setDownloadsUpdates(bool isOn);
    Q_INVOKABLE void checkForUpdates();
    /// Looks anew at what changes without telling: call it when the screen comes into view.
    Q_INVOKABLE void refresh();

signals:
    void fileNoticeChanged();
    void freeSpaceChanged();
    void monitoringChanged();
    void launchAtLoginChanged();
    void notificationsChanged();
    void updatesChanged();
    void branchPrefixChanged();

private:
    AppModel& model_;
    SettingsStore& settings_;
    const WallClock& clock_;
    const QString version_;
    bool launchesAtLogin_ = false;
    FractionSetting warningPercentage_;
    FractionSetting criticalPercentage_;
    GigabyteSetting warningBytes_;
    GigabyteSetting criticalBytes_;
    SteppedSetting rescanInterval_;
    SteppedSetting reconcileInterval_;
    GigabyteSetting growthBytes_;
    FractionSetting growthFraction_;
    SwitchSetting draftPullRequests_;
    SwitchSetting smallLocalFiles_;
    SteppedSetting vaultRetention_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
