#include "driver/SettingWords.h"

#include "Models/JSON.h"
#include "driver/Words.h"

#include <nlohmann/json.hpp>

namespace cairnfield {

namespace {

/// The value as the setting's type; absent when it has another one.
template <class T>
std::optional<T> valueAs(const Json& json);

template <>
std::optional<bool> valueAs(const Json& json) {
    return json.is_boolean() ? std::optional(json.get<bool>()) : std::nullopt;
}
template <>
std::optional<std::int64_t> valueAs(const Json& json) {
    return json.is_number_integer() ? std::optional(json.get<std::int64_t>()) : std::nullopt;
}
template <>
std::optional<double> valueAs(const Json& json) {
    return json.is_number() ? std::optional(json.get<double>()) : std::nullopt;
}
template <>
std::optional<std::string> valueAs(const Json& json) {
    return json.is_string() ? std::optional(json.get<std::string>()) : std::nullopt;
}
template <>
std::optional<ThresholdMode> valueAs(const Json& json) {
    return json.is_string() ? thresholdModeFromRawValue(json.get<std::string>()) : std::nullopt;
}
template <>
std::optional<std::optional<std::string>> valueAs(const Json& json) {
    if (json.is_null()) return std::optional<std::string>();
    const std::optional<std::string> text = valueAs<std::string>(json);
    return text ? std::optional(text) : std::nullopt;
}

/// Gives the value to the one setting that has the key.
class Assignment {
public:
    Assignment(std::string key, Json value) : key_(std::move(key)), value_(std::move(value)) {}

    template <class... T>
    void offer(Setting<T>&... settings) {
        (offerOne(settings), ...);
        if (!isKnown_) throw WrongWords("unknown setting: " + key_);
    }

private:
    template <class T>
    void offerOne(Setting<T>& setting) {
        if (setting.key() != key_) return;
        isKnown_ = true;
        std::optional<T> value = valueAs<T>(value_);
        if (!value) throw WrongWords(key_ + " does not take " + value_.dump());
        setting.set(*std::move(value));
    }

    const std::string key_;
    const Json value_;
    bool isKnown_ = false;
};

}  // namespace

void applySetting(SettingsStore& settings, const std::string& word) {
    const std::size_t sign = word.find('=');
    if (sign == std::string::npos) throw WrongWords("--set takes KEY=JSON, not " + word);
    Json value = Json::parse(word.substr(sign + 1), nullptr, false);
    if (value.is_discarded()) throw WrongWords("not JSON: " + word.substr(sign + 1));

    Assignment assignment(word.substr(0, sign), std::move(value));
    assignment.offer(
        settings.thresholdMode, settings.warningPercentage, settings.criticalPercentage,
        settings.warningAbsoluteBytes, settings.criticalAbsoluteBytes, settings.monitoringEnabled,
        settings.notificationsEnabled, settings.launchAtLogin, settings.rescanIntervalMinutes,
        settings.reconcileIntervalHours, settings.remoteRefreshIntervalHours, settings.growthAbsoluteBytes,
        settings.growthRelativeFraction, settings.createDraftPullRequests, settings.preserveSmallLocalFiles,
        settings.recoveryBranchPrefix, settings.recoveryVaultRetentionDays,
        settings.recoveryVaultMaxFileBytes, settings.gitPathOverride, settings.gitHubCLIPathOverride,
        settings.hasCompletedOnboarding);
}

}  // namespace cairnfield
