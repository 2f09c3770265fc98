#pragma once
// Where files are kept that must never be pushed and would go with their worktree.

#include "Models/RecoveryVaultEntry.h"
#include "Models/Worktree.h"
#include "Shared/Concurrency/Task.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

class RecoveryVaultServicing {
public:
    virtual ~RecoveryVaultServicing() = default;

    /// Copies files of the worktree into the vault; the originals stay. Gives the new entries in the order of
    /// `files`, without those that are gone from the worktree by now. With a number of days below 1 nothing
    /// ever expires. Throws when anything could not be copied; then no entry of this call exists.
    virtual Task<std::vector<RecoveryVaultEntry>> archive(std::vector<IgnoredEntry> files, Worktree from,
                                                          std::string repositoryName, UUID receiptID,
                                                          std::int64_t retentionDays) = 0;
    /// In the order in which they were archived. When the index was lost, was damaged or cannot be read, also
    /// an entry for each copy that no other names (RecoveryVaultEntry::isFound).
    virtual Task<std::vector<RecoveryVaultEntry>> entries() = 0;
    /// Deletes the stored copy, which may be gone already, and its entry. Throws when it cannot. Gives the
    /// file that the entry names when that is none of the vault's: it stays, and only the entry goes.
    virtual Task<std::optional<FilePath>> remove(RecoveryVaultEntry entry) = 0;
    /// Copies the stored file out to a place where nothing is yet; throws otherwise. The entry and the stored
    /// copy stay.
    virtual Task<> restore(RecoveryVaultEntry entry, FilePath destination) = 0;
};

}  // namespace cairnfield
