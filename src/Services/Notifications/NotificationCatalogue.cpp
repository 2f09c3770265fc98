#include "Services/Notifications/NotificationCatalogue.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Text/Text.h"

#include <algorithm>

namespace cairnfield {

namespace {

/// A label of a volume or a folder on its way into a text: it is given by the disk, and may hold anything.
std::string shown(const std::string& name) {
    return visibleText(name);
}

NotificationRequestPayload folderAlert(NotificationKind kind, const WatchedFolder& folder) {
    return {.kind = kind,
            .identifier = std::string(rawValue(kind)) + "." + folder.id.text(),
            .userInfo = {{"path", folder.path.bytes()}}};
}

}  // namespace

NotificationRequestPayload NotificationCatalogue::storageAlert(StorageLevel level,
                                                               const StorageSnapshot& snapshot,
                                                               std::int64_t reclaimableBytes) {
    const bool isCritical = level == StorageLevel::critical;
    const std::string available =
        ByteFormatting::string(std::max<std::int64_t>(snapshot.availableCapacity, 0));
    const std::string reclaimable = ByteFormatting::string(std::max<std::int64_t>(reclaimableBytes, 0));
    return {.kind = isCritical ? NotificationKind::storageCritical : NotificationKind::storageWarning,
            .title = isCritical ? "Storage critically low" : "Storage running low",
            .body = available + " free on " + shown(snapshot.volumeName) + ". " + reclaimable +
                    " looks reclaimable.",
            .identifier = "storage." + std::string(rawValue(level))};
}

NotificationRequestPayload NotificationCatalogue::folderThreshold(const WatchedFolder& folder) {
    NotificationRequestPayload payload = folderAlert(NotificationKind::watchedFolderThreshold, folder);
    payload.title = shown(folder.displayName) + " is large";
    payload.body = ByteFormatting::estimatedString(folder.lastKnownSizeBytes.value_or(0)) + " on disk.";
    return payload;
}

NotificationRequestPayload NotificationCatalogue::growthAnomaly(const WatchedFolder& folder,
                                                                std::int64_t growthBytes,
                                                                std::int64_t hours) {
    NotificationRequestPayload payload = folderAlert(NotificationKind::growthAnomaly, folder);
    payload.title = shown(folder.displayName) + " is growing fast";
    payload.body =
        ByteFormatting::signedString(growthBytes) + " in the last " + std::to_string(hours) + " hours.";
    return payload;
}

NotificationRequestPayload NotificationCatalogue::cleanupEnded(const CleanupReceipt& receipt) {
    NotificationRequestPayload payload;
    payload.identifier = "cleanup." + receipt.id.text();
    if (receipt.outcome == CleanupOutcome::succeeded) {
        payload.kind = NotificationKind::cleanupCompleted;
        payload.title = "Cleanup complete";
        payload.body = "Reclaimed about " +
                       ByteFormatting::string(std::max<std::int64_t>(receipt.reclaimedBytes, 0)) + " from " +
                       shown(receipt.repositoryName) + ".";
    } else {
        payload.kind = NotificationKind::cleanupFailed;
        payload.title = "Cleanup stopped, work is safe";
        payload.body = receipt.errorSummary ? repairedUTF8(*receipt.errorSummary) : "Nothing was deleted.";
    }
    return payload;
}

}  // namespace cairnfield
