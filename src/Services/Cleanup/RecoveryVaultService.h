#pragma once
// The Recovery Vault: the tree "Recovery/{receiptID}/{relativePath}" and its index "recovery-vault.json",
// both in the application support directory. An actor, and its file work is done in one piece within each
// call, so it belongs on a pool whose threads may block.
//
// A copy is written to a new file, synced, compared with its source byte for byte and moved into place, and
// its folder is synced, before its entry exists. Folders are for the user alone (0700), and so are files
// (0600). A link is followed to its content as long as that lies in the worktree; one that leads elsewhere,
// to a folder or to nothing has none to keep and is passed over (isLinkThatKeepsNothing). A folder, and
// whatever cannot be opened, are failures, never skipped.
//
// A call to archive that fails or is cut short leaves whole copies without an entry, which stay, and perhaps
// an unfinished one, which the next start of the vault removes. Nothing here deletes an expired entry. A
// start without a good index looks for the copies that are there and lists them; the next archiving puts them
// into the new index.

#include "Persistence/ApplicationSupport.h"
#include "Platform/Volume.h"
#include "Services/Cleanup/RecoveryVaultServicing.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/FileDescriptor.h"

#include <memory>

namespace cairnfield {

template <class Value>
class JSONFileStore;

class RecoveryVaultService final : public RecoveryVaultServicing, public Actor {
public:
    /// A file that was larger than `maximumFileBytes` at review is refused; of one with holes the whole
    /// length counts. `volume` and `clock` outlive the service.
    RecoveryVaultService(Executor& pool, const ApplicationSupport& support, const VolumeInformation& volume,
                         const WallClock& clock, std::int64_t maximumFileBytes);
    ~RecoveryVaultService() override;

    Task<std::vector<RecoveryVaultEntry>> archive(std::vector<IgnoredEntry> files, Worktree from,
                                                  std::string repositoryName, UUID receiptID,
                                                  std::int64_t retentionDays) override;
    Task<std::vector<RecoveryVaultEntry>> entries() override;
    Task<std::optional<FilePath>> remove(RecoveryVaultEntry entry) override;
    Task<> restore(RecoveryVaultEntry entry, FilePath destination) override;

private:
    /// What the entries of one call have in common.
    struct Call {
        FilePath worktree;
        std::string repositoryName;
        UUID receiptID;
        std::optional<Date> expiresAt;
    };

    Task<> findUnnamedCopies();
    [[nodiscard]] std::vector<RecoveryVaultEntry> copyAll(const std::vector<IgnoredEntry>& files,
                                                          const Call& call);
    [[nodiscard]] std::optional<RecoveryVaultEntry> copyOne(const IgnoredEntry& file, std::int64_t size,
                                                            const Call& call, int root, int directory) const;
    void verifySpace(std::int64_t bytes) const;
    [[nodiscard]] std::optional<std::int64_t> availableBytes() const;
    [[nodiscard]] FileDescriptor openRoot();
    void removeLeftovers();

    const FilePath supportDirectory_;
    const FilePath vaultDirectory_;
    const VolumeInformation& volume_;
    const WallClock& clock_;
    const std::int64_t maximumFileBytes_;
    const std::unique_ptr<JSONFileStore<std::vector<RecoveryVaultEntry>>> index_;
    std::vector<RecoveryVaultEntry> found_;  ///< for copies that no entry of the index names
    bool leftoversRemoved_ = false;
    bool hasLookedForCopies_ = false;
};

}  // namespace cairnfield
