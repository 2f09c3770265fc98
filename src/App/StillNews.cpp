#include "App/StillNews.h"

#include <algorithm>

namespace cairnfield {

bool isStillNews(const NotificationRequestPayload& payload, const AppState& state, Date now) {
    const auto isMeant = [&](const WatchedFolder& folder) {
        return payload.identifier.ends_with(folder.id.text()) && !folder.isSnoozed(now);
    };
    const auto isMeantAndLarge = [&](const WatchedFolder& folder) {
        return isMeant(folder) && folder.level() != StorageLevel::normal;
    };
    const std::vector<WatchedFolder>& folders = state.watchedFolders.get();
    switch (payload.kind) {
        case NotificationKind::storageWarning:
            return state.incident.get().activeLevel == StorageLevel::warning;
        case NotificationKind::storageCritical:
            return state.incident.get().activeLevel == StorageLevel::critical;
        case NotificationKind::watchedFolderThreshold:
            return std::ranges::any_of(folders, isMeantAndLarge);
        case NotificationKind::growthAnomaly:
            return std::ranges::any_of(folders, isMeant);
        case NotificationKind::cleanupCompleted:
        case NotificationKind::cleanupFailed:
            return true;
    }
    return true;
}

}  // namespace cairnfield
