#pragma once
// The live notifications, word for word, with the identifiers by which a repeat takes the place of what is
// shown instead of standing beside it: storage ones hold only the level, folder ones the alert's nature and
// the folder's identity, those of a cleanup its receipt's. Pure functions, any thread. Numbers follow the
// user's locale.

#include "Models/CleanupReceipt.h"
#include "Models/Storage.h"
#include "Models/WatchedFolder.h"
#include "Services/Notifications/Notification.h"

#include <cstdint>

namespace cairnfield::NotificationCatalogue {

/// `storageCritical` for the level critical, `storageWarning` for any other. Negative byte counts read as
/// zero.
[[nodiscard]] NotificationRequestPayload storageAlert(StorageLevel level, const StorageSnapshot& snapshot,
                                                      std::int64_t reclaimableBytes);

/// For a folder of a known size; an unknown one reads as zero.
[[nodiscard]] NotificationRequestPayload folderThreshold(const WatchedFolder& folder);

/// `growthBytes` over the last `hours`, shrinking negative.
[[nodiscard]] NotificationRequestPayload growthAnomaly(const WatchedFolder& folder, std::int64_t growthBytes,
                                                       std::int64_t hours);

/// `cleanupCompleted` for a receipt of success, `cleanupFailed` for any other.
[[nodiscard]] NotificationRequestPayload cleanupEnded(const CleanupReceipt& receipt);

}  // namespace cairnfield::NotificationCatalogue
