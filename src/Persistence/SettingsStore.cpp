#include "Persistence/SettingsStore.h"

#include "Models/WatchedFolder.h"
#include "Services/Storage/ThresholdRecommendationService.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <utility>

namespace cairnfield {

namespace {

/// How a type of setting lies in the defaults: what a stored value means, absent when it is of another type.
template <class T>
struct Stored {
    static std::optional<T> read(const DefaultsValue& value) {
        if (const T* typed = std::get_if<T>(&value)) return *typed;
        return std::nullopt;
    }
    static std::optional<DefaultsValue> write(const T& value) { return value; }
};

/// A number without a fraction may have been stored as an integer.
template <>
std::optional<double> Stored<double>::read(const DefaultsValue& value) {
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<std::int64_t>(&value)) return static_cast<double>(*number);
    return std::nullopt;
}

/// Absent text has no value in the defaults.
template <>
struct Stored<std::optional<std::string>> {
    static std::optional<std::optional<std::string>> read(const DefaultsValue& value) {
        if (const auto* text = std::get_if<std::string>(&value)) return *text;
        return std::nullopt;
    }
    static std::optional<DefaultsValue> write(const std::optional<std::string>& value) {
        if (!value) return std::nullopt;
        return *value;
    }
};

/// Data that holds the raw value as a JSON text, quotes included.
template <>
struct Stored<ThresholdMode> {
    static std::optional<ThresholdMode> read(const DefaultsValue& value) {
        const auto* data = std::get_if<DefaultsData>(&value);
        if (!data) return std::nullopt;
        const Json json = Json::parse(data->bytes, nullptr, false);
        if (!json.is_string()) return std::nullopt;
        return thresholdModeFromRawValue(json.get_ref<const std::string&>());
    }
    static std::optional<DefaultsValue> write(ThresholdMode value) {
        return DefaultsData{Json(std::string(rawValue(value))).dump()};
    }
};

template <class T>
T storedOr(const UserDefaults& defaults, std::string_view key, T fallback) {
    const std::optional<DefaultsValue> value = defaults.value(key);
    if (!value) return fallback;
    return Stored<T>::read(*value).value_or(std::move(fallback));
}

/// Truncated towards zero. A product outside 64 bits is a programming fault that stops the process.
std::int64_t shareOf(std::int64_t total, double fraction) {
    const double product = fraction * static_cast<double>(total);
    constexpr double limit = 9'223'372'036'854'775'808.0;  // 2 to the 63rd
    if (!(product > -limit && product < limit)) std::abort();
    return static_cast<std::int64_t>(product);
}

constexpr GrowthAlertSettings growthDefaults;

}  // namespace

template <class T>
Setting<T>::Setting(UserDefaults& defaults, std::string_view key, T defaultValue)
    : defaults_(defaults), key_(key), value_(storedOr<T>(defaults, key, std::move(defaultValue))) {}

template <class T>
void Setting<T>::set(T value) {
    if (std::optional<DefaultsValue> stored = Stored<T>::write(value)) {
        defaults_.set(key_, *std::move(stored));
    } else {
        defaults_.remove(key_);
    }
    value_.set(std::move(value));
}

template <class T>
void Setting<T>::setWhileTyping(T value) {
    if (std::optional<DefaultsValue> stored = Stored<T>::write(value)) {
        defaults_.setWhileTyping(key_, *std::move(stored));
    } else {
        defaults_.remove(key_);
    }
    value_.set(std::move(value));
}

template class Setting<bool>;
template class Setting<double>;
template class Setting<std::int64_t>;
template class Setting<std::string>;
template class Setting<std::optional<std::string>>;
template class Setting<ThresholdMode>;

SettingsStore::SettingsStore(UserDefaults& defaults)
    : thresholdMode(defaults, "thresholdMode", ThresholdMode::smart),
      warningPercentage(defaults, "warningPercentage", 0.15),
      criticalPercentage(defaults, "criticalPercentage", 0.07),
      warningAbsoluteBytes(defaults, "warningAbsoluteBytes", 42'949'672'960),
      criticalAbsoluteBytes(defaults, "criticalAbsoluteBytes", 21'474'836'480),
      monitoringEnabled(defaults, "monitoringEnabled", true),
      notificationsEnabled(defaults, "notificationsEnabled", false),
      launchAtLogin(defaults, "launchAtLogin", false),
      rescanIntervalMinutes(defaults, "rescanIntervalMinutes", 30),
      reconcileIntervalHours(defaults, "reconcileIntervalHours", 6),
      remoteRefreshIntervalHours(defaults, "remoteRefreshIntervalHours", 0),
      growthAbsoluteBytes(defaults, "growthAbsoluteBytes", growthDefaults.absoluteBytes),
      growthRelativeFraction(defaults, "growthRelativeFraction", growthDefaults.relativeFraction),
      createDraftPullRequests(defaults, "createDraftPullRequests", true),
      preserveSmallLocalFiles(defaults, "preserveSmallLocalFiles", true),
      recoveryBranchPrefix(defaults, "recoveryBranchPrefix", "cairnfield/recovery"),
      recoveryVaultRetentionDays(defaults, "recoveryVaultRetentionDays", 90),
      recoveryVaultMaxFileBytes(defaults, "recoveryVaultMaxFileBytes", 8'388'608),
      gitPathOverride(defaults, "gitPathOverride", std::nullopt),
      gitHubCLIPathOverride(defaults, "gitHubCLIPathOverride", std::nullopt),
      hasCompletedOnboarding(defaults, "hasCompletedOnboarding", false) {}

StorageThresholds SettingsStore::thresholds(const std::optional<StorageSnapshot>& snapshot) const {
    const std::int64_t total = snapshot ? snapshot->totalCapacity : 0;
    StorageThresholds limits;
    switch (thresholdMode.get()) {
        case ThresholdMode::smart:
            return ThresholdRecommendationService::recommendation(total);
        case ThresholdMode::percentage:
            limits = {shareOf(total, warningPercentage.get()), shareOf(total, criticalPercentage.get())};
            break;
        case ThresholdMode::absolute:
            limits = {warningAbsoluteBytes.get(), criticalAbsoluteBytes.get()};
            break;
    }
    return limits.normalized();
}

}  // namespace cairnfield
