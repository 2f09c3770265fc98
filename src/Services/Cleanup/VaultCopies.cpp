#include "Services/Cleanup/VaultCopies.h"

#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Logging/Log.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <unistd.h>

namespace cairnfield {

namespace {

constexpr int deepest = 100;  ///< of folders in each other, each of which holds a descriptor

using Listing = std::unique_ptr<DIR, int (*)(DIR*)>;

Date dateOf(const timespec& time) {
    constexpr std::int64_t farthest = 8'000'000'000;  // seconds that a Date surely holds
    const auto seconds = std::clamp<std::int64_t>(time.tv_sec, -farthest, farthest);
    return Date(std::chrono::seconds(seconds));
}

/// A folder in another one, never through a link.
FileDescriptor folderIn(int parent, const char* name) {
    return FileDescriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

/// Null when it cannot be listed. Takes the descriptor.
Listing listingOf(FileDescriptor folder) {
    DIR* stream = folder ? fdopendir(folder.get()) : nullptr;
    if (stream) (void)folder.release();
    return Listing(stream, closedir);
}

bool isSelfOrParent(std::string_view name) {
    return name == "." || name == "..";
}

/// Finds the copies of one archiving call.
class CallFolder {
public:
    CallFolder(FilePath place, const UUID& receiptID, std::vector<RecoveryVaultEntry>& found)
        : place_(std::move(place)), receiptID_(receiptID), found_(found) {}

    void look(FileDescriptor folder, const std::string& prefix, int depth) {
        const Listing listing = listingOf(std::move(folder));
        if (!listing || depth > deepest) {
            Log::cleanup().error("Could not look through {}", place_.appending(prefix).display());
            return;
        }
        while (const dirent* item = readdir(listing.get())) {
            struct stat status{};
            if (isSelfOrParent(item->d_name)) continue;
            if (fstatat(dirfd(listing.get()), item->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
            const std::string relative = prefix + item->d_name;
            if (S_ISREG(status.st_mode)) add(relative, status);
            if (S_ISDIR(status.st_mode))
                look(folderIn(dirfd(listing.get()), item->d_name), relative + "/", depth + 1);
        }
    }

private:
    void add(const std::string& relative, const struct stat& status) {
        RecoveryVaultEntry entry;
        entry.id = UUID::make();
        entry.receiptID = receiptID_;
        entry.relativePath = FilePath(relative);
        entry.storedPath = place_.appending(relative).standardized();
        entry.sizeBytes = status.st_size;
        entry.modifiedAt = dateOf(status.st_mtim);
        entry.reason = "Found in the Recovery Vault without an entry.";
        entry.archivedAt = dateOf(status.st_ctim);  // when it got its name there
        found_.push_back(std::move(entry));
    }

    const FilePath place_;
    const UUID receiptID_;
    std::vector<RecoveryVaultEntry>& found_;
};

/// The folder that holds the copy, reached without a link from one that bears an identity of the entry on.
FileDescriptor folderOfCopy(const RecoveryVaultEntry& entry) {
    const std::vector<std::string> names = entry.storedPath.components();
    if (!entry.storedPath.isAbsolute() || names.empty() || std::ranges::any_of(names, isSelfOrParent))
        return {};
    const auto last = names.end() - 1;
    const auto ours = std::find_if(names.begin(), last, [&](const std::string& name) {
        return name == entry.receiptID.text() || name == entry.id.text();
    });
    if (ours == last) return {};
    FilePath before("/");
    for (auto name = names.begin(); name != ours; ++name) before = before.appending(*name);
    FileDescriptor folder(open(before.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (auto name = ours; name != last && folder; ++name) folder = folderIn(folder.get(), name->c_str());
    return folder;
}

}  // namespace

std::vector<RecoveryVaultEntry> copiesIn(const FilePath& vault) {
    std::vector<RecoveryVaultEntry> found;
    const Listing listing =
        listingOf(FileDescriptor(open(vault.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    if (!listing) return found;
    while (const dirent* item = readdir(listing.get())) {
        const std::optional<UUID> receiptID = UUID::parse(item->d_name);
        FileDescriptor folder = receiptID ? folderIn(dirfd(listing.get()), item->d_name) : FileDescriptor();
        if (folder)
            CallFolder(vault.appending(item->d_name), *receiptID, found).look(std::move(folder), "", 0);
    }
    std::ranges::sort(found, {}, [](const RecoveryVaultEntry& entry) {
        return std::tuple(entry.archivedAt, entry.storedPath.bytes());
    });
    return found;
}

bool deleteCopyElsewhere(const RecoveryVaultEntry& entry) {
    const FileDescriptor folder = folderOfCopy(entry);
    if (!folder) return false;
    const std::string name = entry.storedPath.lastComponent();
    struct stat status{};
    if (fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (!S_ISREG(status.st_mode)) return false;
    if (unlinkat(folder.get(), name.c_str(), 0) != 0 && errno != ENOENT)
        throw std::system_error(errno, std::generic_category(), entry.storedPath.display());
    return true;
}

}  // namespace cairnfield
