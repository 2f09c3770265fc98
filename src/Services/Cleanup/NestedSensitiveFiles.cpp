#include "Services/Cleanup/NestedSensitiveFiles.h"

#include "Services/Cleanup/SensitiveNames.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/FileDescriptor.h"

#include <linux/stat.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <string_view>
#include <system_error>

namespace cairnfield {

namespace {

using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;
using Facts = struct statx;
using Standing = SensitiveTrail::Standing;

constexpr int directoryFlags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t namesBetweenQuestions = 1024;

/// Ends the look; what is said of it becomes the failure.
struct NotLookedThrough {
    std::string path;
    std::string why;
};

[[noreturn]] void fail(const std::string& path, int code) {
    throw NotLookedThrough{path, std::generic_category().message(code)};
}

/// Something else has the place, or nothing: there is nothing in it to be lost.
bool isGone(int code) {
    return code == ENOENT || code == ENOTDIR || code == ELOOP;
}

std::string inside(const std::string& directory, std::string_view name) {
    std::string path = directory;
    if (!path.empty()) path += '/';
    path += name;
    return path;
}

Date dateOf(const Facts& facts) {
    // A time that no Date can hold is held at the ends of what one can.
    const std::int64_t seconds =
        std::clamp<std::int64_t>(facts.stx_mtime.tv_sec, -4'000'000'000, 8'000'000'000);
    return Date(std::chrono::seconds(seconds)) + std::chrono::nanoseconds(facts.stx_mtime.tv_nsec);
}

class Look {
public:
    Look(const Worktree& reviewed, const std::stop_token& stop) : reviewed_(reviewed), stop_(stop) {}

    std::vector<IgnoredEntry> run() {
        root_ = FileDescriptor(open(reviewed_.path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!root_ && isGone(errno)) return {};
        if (!root_) fail(reviewed_.path.display(), errno);
        rootFacts_ = factsOf(root_.get(), reviewed_.path.display());
        for (const std::string& path : reviewed_.status.ignoredPaths) lookAt(path);
        std::ranges::sort(seen_, {}, &IgnoredEntry::relativePath);
        const auto same = std::ranges::unique(seen_, {}, &IgnoredEntry::relativePath);
        seen_.erase(same.begin(), same.end());
        return std::move(seen_);
    }

private:
    /// One path of git's list: a file, or a directory with a slash behind it.
    void lookAt(std::string_view listed) {
        checkStop();
        const bool isDirectory = listed.ends_with('/');
        if (isDirectory) listed.remove_suffix(1);
        const std::size_t slash = listed.rfind('/');
        const bool isAtTheTop = slash == std::string_view::npos;
        if (listed.empty() || (isAtTheTop && !isDirectory)) return;
        const std::string_view parent = isAtTheTop ? std::string_view() : listed.substr(0, slash);
        const std::string_view name = isAtTheTop ? listed : listed.substr(slash + 1);

        SensitiveTrail trail;
        for (std::size_t begin = 0; begin < parent.size();) {
            const std::size_t end = std::min(parent.find('/', begin), parent.size());
            trail.enter(parent.substr(begin, end - begin), Standing::above);
            begin = end + 1;
        }
        if (isDirectory) {
            trail.enter(name, Standing::inside);
            if (trail.isRebuildable() || !goTo(std::string(parent))) return;
            walk(parentOfListed(), std::string(name).c_str(), std::string(listed), trail);
        } else if (trail.counts(name) || SensitiveTrail().counts(name)) {
            if (goTo(std::string(parent))) report(parentOfListed(), std::string(name).c_str(), parent_);
        }
    }

    /// Opens a directory of the worktree, unless it is the one that the last path was in. False when no
    /// directory is there any more.
    bool goTo(const std::string& directory) {
        if (parent_ == directory && (directory.empty() || parentDescriptor_)) return true;
        parent_.clear();
        parentDescriptor_.reset();
        FileDescriptor above;
        for (std::size_t begin = 0; begin < directory.size();) {
            const std::size_t end = std::min(directory.find('/', begin), directory.size());
            const std::string name = directory.substr(begin, end - begin);
            FileDescriptor next(
                openat(above ? above.get() : root_.get(), name.c_str(), O_PATH | directoryFlags));
            if (!next && isGone(errno)) return false;
            if (!next) fail(directory, errno);
            refuseOtherFileSystem(next.get(), directory);
            above = std::move(next);
            begin = end + 1;
        }
        parent_ = directory;
        parentDescriptor_ = std::move(above);
        return true;
    }
    [[nodiscard]] int parentOfListed() const {
        return parentDescriptor_ ? parentDescriptor_.get() : root_.get();
    }

    void walk(int parent, const char* name, const std::string& path, const SensitiveTrail& trail) {
        checkStop();
        FileDescriptor descriptor(openat(parent, name, O_RDONLY | directoryFlags));
        if (!descriptor && isGone(errno)) return;
        if (!descriptor) fail(path, errno);
        refuseOtherFileSystem(descriptor.get(), path);
        const Directory directory(fdopendir(descriptor.get()), closedir);
        if (!directory) fail(path, errno);
        const int folder = descriptor.release();
        errno = 0;
        while (const dirent* entry = readdir(directory.get())) {
            if (++names_ % namesBetweenQuestions == 0) checkStop();
            const std::string_view entryName = entry->d_name;
            if (entryName == "." || entryName == "..") continue;
            if (isFolder(folder, *entry, path)) {
                SensitiveTrail below = trail;
                below.enter(entryName, Standing::inside);
                if (!below.isRebuildable()) walk(folder, entry->d_name, inside(path, entryName), below);
            } else if (trail.counts(entryName)) {
                report(folder, entry->d_name, path);
            }
            errno = 0;
        }
        if (errno != 0) fail(path, errno);
    }

    /// Not every file system tells the kind with the name.
    static bool isFolder(int folder, const dirent& entry, const std::string& path) {
        if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
        const std::optional<Facts> facts = factsIn(folder, entry.d_name, path);
        return facts && S_ISDIR(facts->stx_mode);
    }

    void report(int folder, const char* name, const std::string& directory) {
        const std::optional<Facts> facts = factsIn(folder, name, directory);
        if (!facts || !(S_ISREG(facts->stx_mode) || S_ISLNK(facts->stx_mode))) return;
        IgnoredEntry entry;
        entry.relativePath = inside(directory, name);
        entry.name = entry.relativePath;
        entry.sizeBytes = static_cast<std::int64_t>(facts->stx_size);
        entry.modifiedAt = dateOf(*facts);
        entry.classification = IgnoredEntryClass::sensitive;
        seen_.push_back(std::move(entry));
    }

    /// Absent when there is nothing of that name any more.
    static std::optional<Facts> factsIn(int folder, const char* name, const std::string& directory) {
        Facts facts{};
        const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
        if (statx(folder, name, flags, STATX_TYPE | STATX_SIZE | STATX_MTIME, &facts) == 0) return facts;
        if (isGone(errno)) return std::nullopt;
        fail(inside(directory, name), errno);
    }

    static Facts factsOf(int descriptor, const std::string& path) {
        Facts facts{};
        if (statx(descriptor, "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, STATX_TYPE | STATX_MNT_ID, &facts) != 0)
            fail(path, errno);
        return facts;
    }

    /// What is mounted there does not go with the worktree, and what it covers cannot be seen.
    void refuseOtherFileSystem(int descriptor, const std::string& path) const {
        const Facts facts = factsOf(descriptor, path);
        const bool isSame = facts.stx_dev_major == rootFacts_.stx_dev_major &&
                            facts.stx_dev_minor == rootFacts_.stx_dev_minor &&
                            facts.stx_mnt_id == rootFacts_.stx_mnt_id;
        if (!isSame) throw NotLookedThrough{path, "Something is mounted there"};
    }

    void checkStop() const {
        if (stop_.stop_requested()) throw Cancelled();
    }

    const Worktree& reviewed_;
    const std::stop_token& stop_;
    FileDescriptor root_;
    Facts rootFacts_{};
    std::string parent_;               ///< of the last path that was opened; empty for the root
    FileDescriptor parentDescriptor_;  ///< none for the root
    std::size_t names_ = 0;
    std::vector<IgnoredEntry> seen_;
};

}  // namespace

std::vector<IgnoredEntry> NestedSensitiveFiles::withinLimit() const {
    std::vector<IgnoredEntry> kept;
    std::ranges::copy_if(seen, std::back_inserter(kept),
                         [this](const IgnoredEntry& file) { return isWithinLimit(file); });
    return kept;
}

NestedSensitiveFiles lookForNestedSensitiveFiles(const Worktree& reviewed, std::int64_t maximumFileBytes,
                                                 const std::stop_token& stop) {
    NestedSensitiveFiles found;
    found.maximumFileBytes = maximumFileBytes;
    try {
        found.seen = Look(reviewed, stop).run();
    } catch (const NotLookedThrough& failure) {
        found.failure = FilePath(failure.path).display() +
                        " could not be looked through for files that look sensitive: " + failure.why + ".";
    }
    return found;
}

}  // namespace cairnfield
