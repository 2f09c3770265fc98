#pragma once
// The record of one file that the Recovery Vault keeps: where it came from and where its copy is. A plain
// value, any thread.

#include "Models/JSON.h"

#include <cstdint>
#include <optional>
#include <string>

namespace cairnfield {

struct RecoveryVaultEntry {
    std::int64_t schemaVersion = 1;
    UUID id;
    UUID receiptID;  ///< of the call that archived it, and the name of its directory; not of a CleanupReceipt
    std::string repositoryName;
    FilePath originalWorktreePath;   ///< empty when isFound(), like the name
    FilePath relativePath;           ///< inside that worktree
    FilePath storedPath;             ///< of the copy, absolute
    std::int64_t sizeBytes = 0;      ///< at review
    std::optional<Date> modifiedAt;  ///< at review
    std::string reason;              ///< why it was kept, in words for the person
    Date archivedAt;
    std::optional<Date> expiresAt;  ///< for the person to know; nothing goes by itself

    /// Whether it was made for a copy that no entry named, so that it is not known where that came from.
    [[nodiscard]] bool isFound() const { return originalWorktreePath.isEmpty() && repositoryName.empty(); }

    friend bool operator==(const RecoveryVaultEntry&, const RecoveryVaultEntry&) = default;
};

void to_json(Json& json, const RecoveryVaultEntry& entry);
void from_json(const Json& json, RecoveryVaultEntry& entry);

}  // namespace cairnfield
