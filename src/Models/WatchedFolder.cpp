#include "Models/WatchedFolder.h"

#include "Models/JSONFields.h"
#include "Shared/Text/Base64.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace cairnfield {

WatchedFolder WatchedFolder::make(const FilePath& standardizedPath) {
    WatchedFolder folder;
    folder.id = UUID::make();
    folder.displayName = visibleText(standardizedPath.lastComponent());
    folder.path = standardizedPath;
    return folder;
}

StorageLevel WatchedFolder::level() const {
    if (!lastKnownSizeBytes) return StorageLevel::normal;
    if (criticalBytes && *lastKnownSizeBytes >= *criticalBytes) return StorageLevel::critical;
    if (warningBytes && *lastKnownSizeBytes >= *warningBytes) return StorageLevel::warning;
    return StorageLevel::normal;
}

void to_json(Json& json, const WatchedFolder& folder) {
    json = {{"id", folder.id},
            {"displayName", jsonFromText(folder.displayName)},
            {"path", folder.path},
            {"isEnabled", folder.isEnabled},
            {"growthAlertEnabled", folder.growthAlertEnabled}};
    detail::writeOptional(json, "warningBytes", folder.warningBytes);
    detail::writeOptional(json, "criticalBytes", folder.criticalBytes);
    detail::writeOptional(json, "lastScanAt", folder.lastScanAt);
    detail::writeOptional(json, "lastKnownSizeBytes", folder.lastKnownSizeBytes);
    detail::writeOptional(json, "previousSizeBytes", folder.previousSizeBytes);
    detail::writeOptional(json, "lastScanError", folder.lastScanError);
    detail::writeOptional(json, "snoozedUntil", folder.snoozedUntil);
    if (folder.bookmarkData) json["bookmarkData"] = base64Encoded(*folder.bookmarkData);
}

void from_json(const Json& json, WatchedFolder& folder) {
    detail::readRequired(json, "id", folder.id);
    detail::readRequired(json, "displayName", folder.displayName);
    detail::readRequired(json, "path", folder.path);
    detail::readRequired(json, "isEnabled", folder.isEnabled);
    detail::readRequired(json, "growthAlertEnabled", folder.growthAlertEnabled);
    detail::readOptional(json, "warningBytes", folder.warningBytes);
    detail::readOptional(json, "criticalBytes", folder.criticalBytes);
    detail::readOptional(json, "lastScanAt", folder.lastScanAt);
    detail::readOptional(json, "lastKnownSizeBytes", folder.lastKnownSizeBytes);
    detail::readOptional(json, "previousSizeBytes", folder.previousSizeBytes);
    detail::readOptional(json, "lastScanError", folder.lastScanError);
    detail::readOptional(json, "snoozedUntil", folder.snoozedUntil);
    detail::readOptional(json, "bookmarkData", folder.bookmarkData);
    if (!folder.bookmarkData) return;
    folder.bookmarkData = base64Decoded(*folder.bookmarkData);
    if (!folder.bookmarkData) detail::throwUnexpected(json.at("bookmarkData"), "base64 text");
}

void to_json(Json& json, const SizeSample& sample) {
    json = {{"date", jsonFromDate(sample.date)}, {"bytes", sample.bytes}};
}

void from_json(const Json& json, SizeSample& sample) {
    detail::readRequired(json, "date", sample.date);
    detail::readRequired(json, "bytes", sample.bytes);
}

void to_json(Json& json, const WatchedFolderFile& file) {
    Json samples = Json::object();
    for (const auto& [path, list] : file.samples) samples[pathToJSONText(path)] = list;
    json = {{"schemaVersion", file.schemaVersion},
            {"folders", file.folders},
            {"samples", std::move(samples)},
            {"pinnedWorktreePaths", file.pinnedWorktreePaths}};
}

void from_json(const Json& json, WatchedFolderFile& file) {
    detail::readRequired(json, "schemaVersion", file.schemaVersion);
    detail::readRequired(json, "folders", file.folders);
    detail::readRequired(json, "pinnedWorktreePaths", file.pinnedWorktreePaths);
    const Json& samples = json.at("samples");
    if (!samples.is_object()) detail::throwUnexpected(samples, "samples by path");
    file.samples.clear();
    for (const auto& [path, list] : samples.items())
        file.samples[pathFromJSONText(path)] = list.get<std::vector<SizeSample>>();
}

namespace {

struct Ends {
    SizeSample first;
    SizeSample last;
};

/// The oldest and the newest sample of the window that ends at `now`; of several at one time, the outermost
/// in the list.
std::optional<Ends> endsOfWindow(const std::vector<SizeSample>& samples, std::int64_t windowHours, Date now) {
    const double window = static_cast<double>(windowHours) * 3600;
    std::optional<Ends> ends;
    for (const SizeSample& sample : samples) {
        if (secondsBetween(sample.date, now) > window) continue;
        if (!ends) ends = {sample, sample};
        if (sample.date < ends->first.date) ends->first = sample;
        if (sample.date >= ends->last.date) ends->last = sample;
    }
    return ends;
}

/// Held at the ends of the range: the numbers come from a file that anyone may have written.
std::int64_t difference(std::int64_t from, std::int64_t to) {
    std::int64_t result = 0;
    if (!__builtin_sub_overflow(to, from, &result)) return result;
    return to < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

}  // namespace

std::optional<std::int64_t> GrowthAnalyzer::growth(const std::vector<SizeSample>& samples,
                                                   std::int64_t windowHours, Date now) {
    const std::optional<Ends> ends = endsOfWindow(samples, windowHours, now);
    if (!ends) return std::nullopt;
    return difference(ends->first.bytes, ends->last.bytes);
}

bool GrowthAnalyzer::isAnomalous(const std::vector<SizeSample>& samples, const GrowthAlertSettings& settings,
                                 Date now) {
    const std::optional<Ends> ends = endsOfWindow(samples, settings.windowHours, now);
    if (!ends || ends->first.bytes < 1) return false;
    const std::int64_t delta = difference(ends->first.bytes, ends->last.bytes);
    if (delta < 1) return false;
    if (delta >= settings.absoluteBytes) return true;
    return settings.relativeFraction <= static_cast<double>(delta) / static_cast<double>(ends->first.bytes);
}

}  // namespace cairnfield
