#include "Services/Cleanup/RecoveryVaultService.h"

#include "Persistence/JSONFileStore.h"
#include "Persistence/StoredFileNames.h"
#include "Services/Cleanup/LocalFile.h"
#include "Services/Cleanup/UnfinishedCopy.h"
#include "Services/Cleanup/VaultCopies.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Files/Files.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"
#include "Shared/Time/CalendarDays.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <iterator>
#include <limits>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

using Entries = std::vector<RecoveryVaultEntry>;

namespace {

[[noreturn]] void refuse(std::string message) {
    throw CairnfieldError(CairnfieldError::RecoveryVaultFailure{std::move(message)});
}

[[noreturn]] void fail(int code, const FilePath& path) {
    throw std::system_error(code, std::generic_category(), path.display());
}

/// Held at the ends of the range: the sizes come from files that anyone may have made.
std::int64_t sum(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    if (!__builtin_add_overflow(a, b, &result)) return result;
    return b < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

std::string_view reasonFor(const IgnoredEntry& file) {
    return file.classification == IgnoredEntryClass::sensitive
               ? "Ignored file that looks sensitive; never pushed to a remote."
               : "Local-only file selected during review.";
}

/// True when something has the name, be it a link to nothing.
bool exists(const FilePath& path) {
    struct stat status{};
    return lstat(path.c_str(), &status) == 0;
}

bool isInside(const FilePath& path, const FilePath& folder) {
    return path.standardized().bytes().starts_with(folder.standardized().bytes() + "/");
}

/// The found entries whose copies no other entry names.
Entries unnamedOf(const Entries& found, const Entries& entries) {
    Entries unnamed;
    std::ranges::copy_if(found, std::back_inserter(unnamed), [&](const RecoveryVaultEntry& copy) {
        return std::ranges::none_of(entries, [&](const RecoveryVaultEntry& entry) {
            return entry.storedPath == copy.storedPath ||
                   (entry.receiptID == copy.receiptID && entry.relativePath == copy.relativePath);
        });
    });
    return unnamed;
}

/// A folder can be in the way only when an identity is used twice.
void removeFolderAt(const FilePath& path) {
    struct stat status{};
    if (lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        std::filesystem::remove_all(path.bytes());
}

}  // namespace

RecoveryVaultService::RecoveryVaultService(Executor& pool, const ApplicationSupport& support,
                                           const VolumeInformation& volume, const WallClock& clock,
                                           std::int64_t maximumFileBytes)
    : Actor(pool),
      supportDirectory_(support.directory()),
      vaultDirectory_(support.recoveryVaultDirectory()),
      volume_(volume),
      clock_(clock),
      maximumFileBytes_(maximumFileBytes),
      index_(std::make_unique<JSONFileStore<Entries>>(pool, support, StoredFileNames::recoveryVault,
                                                      Entries())) {}

RecoveryVaultService::~RecoveryVaultService() = default;

Task<Entries> RecoveryVaultService::archive(std::vector<IgnoredEntry> files, Worktree from,
                                            std::string repositoryName, UUID receiptID,
                                            std::int64_t retentionDays) {
    if (files.empty()) co_return Entries();
    Call call{std::move(from.path), std::move(repositoryName), receiptID, std::nullopt};
    if (retentionDays >= 1) call.expiresAt = addingCalendarDays(clock_.now(), retentionDays);
    co_await findUnnamedCopies();
    const Entries added = copyAll(files, call);
    const Entries found = found_;
    std::function<void(Entries&)> append = [&](Entries& entries) {
        const Entries unnamed = unnamedOf(unnamedOf(found, added), entries);
        entries.insert(entries.end(), unnamed.begin(), unnamed.end());
        entries.insert(entries.end(), added.begin(), added.end());
    };
    co_await index_->mutate(std::move(append));
    std::erase_if(found_, [&](const RecoveryVaultEntry& copy) {
        return std::ranges::find(found, copy.id, &RecoveryVaultEntry::id) != found.end();
    });
    co_return added;
}

Task<Entries> RecoveryVaultService::entries() {
    removeLeftovers();
    co_await findUnnamedCopies();
    Entries entries = co_await index_->load();
    const Entries unnamed = unnamedOf(found_, entries);
    entries.insert(entries.end(), unnamed.begin(), unnamed.end());
    co_return entries;
}

/// Once, before this run puts copies there itself.
Task<> RecoveryVaultService::findUnnamedCopies() {
    if (hasLookedForCopies_) co_return;
    const bool hasIndex = co_await index_->hasStoredValue();
    if (std::exchange(hasLookedForCopies_, true) || hasIndex) co_return;
    found_ = copiesIn(vaultDirectory_);
    if (!found_.empty()) Log::cleanup().info("The vault holds {} copies without an index", found_.size());
}

Task<std::optional<FilePath>> RecoveryVaultService::remove(RecoveryVaultEntry entry) {
    std::optional<FilePath> staying;
    if (!exists(entry.storedPath)) {
        // Somebody was here before: nothing is left to delete.
    } else if (isInside(entry.storedPath, vaultDirectory_)) {
        if (unlink(entry.storedPath.c_str()) != 0 && errno != ENOENT) fail(errno, entry.storedPath);
    } else if (!deleteCopyElsewhere(entry)) {
        staying = entry.storedPath;
    }
    const auto isTheEntry = [&](const RecoveryVaultEntry& other) { return other.id == entry.id; };
    // What the index does not name needs no change of it, which may be one that cannot be made.
    if (std::erase_if(found_, isTheEntry) > 0) co_return staying;
    std::function<void(Entries&)> drop = [&](Entries& entries) { std::erase_if(entries, isTheEntry); };
    co_await index_->mutate(std::move(drop));
    co_return staying;
}

Task<> RecoveryVaultService::restore(RecoveryVaultEntry entry, FilePath destination) {
    const FileDescriptor stored(
        open(entry.storedPath.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!stored && (errno == ENOENT || errno == ENOTDIR)) refuse("The stored copy is missing.");
    if (!stored) fail(errno, entry.storedPath);
    struct stat status{};
    if (fstat(stored.get(), &status) != 0) fail(errno, entry.storedPath);
    if (!S_ISREG(status.st_mode)) fail(EINVAL, entry.storedPath);

    const FilePath parent = destination.parent().isEmpty() ? FilePath(".") : destination.parent();
    const std::string name = destination.lastComponent();
    ensureDirectory(parent);
    if (exists(destination)) refuse(name + " already exists.");
    const FileDescriptor folder = openFolder(parent);
    UnfinishedCopy copy(folder.get(), stored.get());
    if (!copy.equalsSource()) refuse(name + " changed while it was copied.");
    if (!copy.appearAs(folder.get(), name)) refuse(name + " already exists.");
    syncFolder(folder.get());
    co_return;
}

Entries RecoveryVaultService::copyAll(const std::vector<IgnoredEntry>& files, const Call& call) {
    std::int64_t total = 0;
    std::vector<std::int64_t> sizes;
    for (const IgnoredEntry& file : files) {
        sizes.push_back(sizeThatCounts(call.worktree, file));
        total = sum(total, sizes.back());
    }
    verifySpace(total);

    Entries entries;
    try {
        const FileDescriptor root = openRoot();
        const FileDescriptor directory = enterFolder(root.get(), call.receiptID.text());
        for (std::size_t i = 0; i < files.size(); ++i) {
            std::optional<RecoveryVaultEntry> entry =
                copyOne(files[i], sizes[i], call, root.get(), directory.get());
            if (entry) entries.push_back(*std::move(entry));
        }
    } catch (const std::system_error& failure) {
        refuse(describe(failure));
    }
    return entries;
}

std::optional<RecoveryVaultEntry> RecoveryVaultService::copyOne(const IgnoredEntry& file, std::int64_t size,
                                                                const Call& call, int root,
                                                                int directory) const {
    if (size > maximumFileBytes_)
        refuse(file.name + " is " + ByteFormatting::string(size) + "; review it manually.");
    const std::optional<FileDescriptor> source = openLocalFile(call.worktree, file, root);
    if (!source) return std::nullopt;

    const std::vector<std::string> components = componentsInside(file);
    FileDescriptor folder(fcntl(directory, F_DUPFD_CLOEXEC, 0));
    for (std::size_t i = 0; i + 1 < components.size(); ++i) folder = enterFolder(folder.get(), components[i]);
    RecoveryVaultEntry entry;
    entry.storedPath =
        vaultDirectory_.appending(call.receiptID.text()).appending(file.relativePath).standardized();
    removeFolderAt(entry.storedPath);
    try {
        UnfinishedCopy copy(root, source->get());
        if (!copy.equalsSource()) refuse(file.name + " changed while it was copied.");
        copy.replace(folder.get(), components.back());
        syncFolder(folder.get());
    } catch (const std::system_error& failure) {
        refuse(file.name + ": " + describe(failure));
    }

    entry.id = UUID::make();
    entry.receiptID = call.receiptID;
    entry.repositoryName = call.repositoryName;
    entry.originalWorktreePath = call.worktree;
    entry.relativePath = FilePath(file.relativePath);
    entry.sizeBytes = file.sizeBytes;
    entry.modifiedAt = file.modifiedAt;
    entry.reason = reasonFor(file);
    entry.archivedAt = clock_.now();
    entry.expiresAt = call.expiresAt;
    return entry;
}

void RecoveryVaultService::verifySpace(std::int64_t bytes) const {
    const std::int64_t required = sum(bytes, bytes);
    const std::int64_t available = availableBytes().value_or(0);
    if (available == 0 || required < available)
        return;  // nothing can be said about a volume without a figure
    throw CairnfieldError(CairnfieldError::InsufficientTemporaryStorage{required, available});
}

/// Of the nearest folder that is there: at the first run the vault's own is not.
std::optional<std::int64_t> RecoveryVaultService::availableBytes() const {
    for (FilePath place = supportDirectory_;; place = place.parent()) {
        try {
            const VolumeFacts facts = volume_.facts(place);
            if (facts.availableCapacityForImportantUsage) return facts.availableCapacityForImportantUsage;
            return facts.availableCapacity;
        } catch (const std::system_error&) {
            if (place.parent() == place || place.isEmpty()) return std::nullopt;
        }
    }
}

FileDescriptor RecoveryVaultService::openRoot() {
    ensureDirectory(vaultDirectory_);
    removeLeftovers();
    FileDescriptor root = openFolder(vaultDirectory_);
    // Also one that somebody else made holds secrets from now on. Not every file system has modes.
    struct stat status{};
    if (fstat(root.get(), &status) == 0 && (status.st_mode & 077U) != 0) (void)fchmod(root.get(), 0700);
    return root;
}

void RecoveryVaultService::removeLeftovers() {
    if (std::exchange(leftoversRemoved_, true) || !exists(vaultDirectory_)) return;
    try {
        removeUnfinishedCopies(openFolder(vaultDirectory_).get());
    } catch (const std::system_error& failure) {
        Log::cleanup().error("Could not tidy the vault: {}", visibleText(describe(failure)));
    }
}

}  // namespace cairnfield
