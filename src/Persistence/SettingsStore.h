#pragma once
// Every setting of the program. Reads all of the user's defaults once, hands each change on to them, which
// write it off this thread (Platform/UserDefaults.h), and tells its observers when a value really changed.
// Main thread only. It keeps what it is given: limits and clamps are its readers'. A stored value of another
// type reads as the default, and a default is never written back.

#include "Models/Storage.h"
#include "Platform/UserDefaults.h"
#include "Shared/Concurrency/Published.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

/// One setting under the key that is its name. Setting it writes it, also when the value is the one it has.
template <class T>
class Setting {
public:
    Setting(UserDefaults& defaults, std::string_view key, T defaultValue);

    [[nodiscard]] const T& get() const { return value_.get(); }
    void set(T value);
    /// The same for each of the values that follow each other as a person types, until doneTyping().
    void setWhileTyping(T value);
    void doneTyping() { defaults_.doneTyping(); }
    [[nodiscard]] Subscription observe(std::function<void()> observer) {
        return value_.observe(std::move(observer));
    }
    [[nodiscard]] std::string_view key() const { return key_; }

private:
    UserDefaults& defaults_;
    std::string_view key_;  ///< of a literal
    Published<T> value_;
};

class SettingsStore {
public:
    /// `defaults` outlives the store.
    explicit SettingsStore(UserDefaults& defaults);

    Setting<ThresholdMode> thresholdMode;
    Setting<double> warningPercentage;   ///< a fraction of the capacity
    Setting<double> criticalPercentage;  ///< a fraction of the capacity
    Setting<std::int64_t> warningAbsoluteBytes;
    Setting<std::int64_t> criticalAbsoluteBytes;
    Setting<bool> monitoringEnabled;
    Setting<bool> notificationsEnabled;
    Setting<bool> launchAtLogin;  ///< the last one that succeeded
    Setting<std::int64_t> rescanIntervalMinutes;
    Setting<std::int64_t> reconcileIntervalHours;
    Setting<std::int64_t> remoteRefreshIntervalHours;  ///< stored; nothing reads it
    Setting<std::int64_t> growthAbsoluteBytes;
    Setting<double> growthRelativeFraction;
    Setting<bool> createDraftPullRequests;
    Setting<bool> preserveSmallLocalFiles;
    Setting<std::string> recoveryBranchPrefix;
    Setting<std::int64_t> recoveryVaultRetentionDays;
    Setting<std::int64_t> recoveryVaultMaxFileBytes;
    Setting<std::optional<std::string>> gitPathOverride;
    Setting<std::optional<std::string>> gitHubCLIPathOverride;
    Setting<bool> hasCompletedOnboarding;

    /// The limits in force for a reading, or for none.
    [[nodiscard]] StorageThresholds thresholds(const std::optional<StorageSnapshot>& snapshot) const;
};

}  // namespace cairnfield
