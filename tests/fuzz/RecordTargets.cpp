#include "Models/CleanupReceipt.h"
#include "Models/Git.h"
#include "Models/RecoveryVaultEntry.h"
#include "Models/StorageHistory.h"
#include "Models/WatchedFolder.h"
#include "Shared/Text/Text.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Targets.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

namespace {

/// Absent for the one failure that is promised; any other one goes out of here.
template <class Value>
std::optional<Value> decoded(std::string_view bytes) {
    try {
        return Json::parse(bytes).get<Value>();
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

/// What decodes can be written, and reads as the same value and the same text from then on.
template <class Value>
std::optional<Value> roundTrip(std::string_view input) {
    std::optional<Value> value = decoded<Value>(input);
    if (!value) return std::nullopt;
    const std::string text = Json(*value).dump(2);
    const std::optional<Value> again = decoded<Value>(text);
    promise(again == value, "a value survives its file");
    promise(Json(*again).dump(2) == text, "a file survives its value");
    (void)printable(Json(*value)).dump();
    return value;
}

void checkSummary(const CleanupReceipt& receipt) {
    const std::string summary = receipt.recoverySummary();
    promise(isValidUTF8(summary), "a summary is text");
    promise(!summary.ends_with('\n') || (receipt.errorSummary && receipt.errorSummary->ends_with('\n')),
            "a summary ends with its last word");
    promise(summary.find("\nRepository: " + visibleText(receipt.repositoryName) + "\n") != std::string::npos,
            "a name stays on its line");
}

}  // namespace

void fuzzHistoryJSON(std::string_view input) {
    (void)roundTrip<StorageHistoryFile>(input);
}

void fuzzFoldersJSON(std::string_view input) {
    const std::optional<WatchedFolderFile> file = roundTrip<WatchedFolderFile>(input);
    if (!file) return;
    const Date now = std::chrono::sys_days(std::chrono::November / 21 / 2026);
    for (const WatchedFolder& folder : file->folders) {
        (void)folder.level();
        promise(!folder.isSnoozed(now) || folder.snoozedUntil, "a folder is snoozed until some time");
    }
    constexpr GrowthAlertSettings settings;
    for (const auto& [path, samples] : file->samples) {
        const std::optional<std::int64_t> growth = GrowthAnalyzer::growth(samples, settings.windowHours, now);
        if (GrowthAnalyzer::isAnomalous(samples, settings, now))
            promise(growth && *growth > 0, "only growth is news");
    }
}

void fuzzReceiptsJSON(std::string_view input) {
    const auto receipts = roundTrip<std::vector<CleanupReceipt>>(input);
    if (!receipts) return;
    for (const CleanupReceipt& receipt : *receipts) checkSummary(receipt);
}

void fuzzVaultJSON(std::string_view input) {
    (void)roundTrip<std::vector<RecoveryVaultEntry>>(input);
}

void fuzzPullRequestJSON(std::string_view input) {
    (void)roundTrip<PullRequestInfo>(input);
}

}  // namespace cairnfield
