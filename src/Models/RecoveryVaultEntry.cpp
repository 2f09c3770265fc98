#include "Models/RecoveryVaultEntry.h"

#include "Models/JSONFields.h"

namespace cairnfield {

void to_json(Json& json, const RecoveryVaultEntry& entry) {
    json = {{"schemaVersion", entry.schemaVersion},
            {"id", entry.id},
            {"receiptID", entry.receiptID},
            {"repositoryName", jsonFromText(entry.repositoryName)},
            {"originalWorktreePath", entry.originalWorktreePath},
            {"relativePath", entry.relativePath},
            {"storedPath", entry.storedPath},
            {"sizeBytes", entry.sizeBytes},
            {"reason", jsonFromText(entry.reason)},
            {"archivedAt", jsonFromDate(entry.archivedAt)}};
    detail::writeOptional(json, "modifiedAt", entry.modifiedAt);
    detail::writeOptional(json, "expiresAt", entry.expiresAt);
}

void from_json(const Json& json, RecoveryVaultEntry& entry) {
    detail::readRequired(json, "schemaVersion", entry.schemaVersion);
    detail::readRequired(json, "id", entry.id);
    detail::readRequired(json, "receiptID", entry.receiptID);
    detail::readRequired(json, "repositoryName", entry.repositoryName);
    detail::readRequired(json, "originalWorktreePath", entry.originalWorktreePath);
    detail::readRequired(json, "relativePath", entry.relativePath);
    detail::readRequired(json, "storedPath", entry.storedPath);
    detail::readRequired(json, "sizeBytes", entry.sizeBytes);
    detail::readOptional(json, "modifiedAt", entry.modifiedAt);
    detail::readRequired(json, "reason", entry.reason);
    detail::readRequired(json, "archivedAt", entry.archivedAt);
    detail::readOptional(json, "expiresAt", entry.expiresAt);
}

}  // namespace cairnfield
