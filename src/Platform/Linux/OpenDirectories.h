#pragma once
// The directories of one walk that are still of use, and the descriptors of those that are open. Shared by
// the threads of the walk; every operation may be called from any of them.
//
// A directory is known from the moment in which it was found until everything below it was counted. Its
// descriptor is open only while it is being read or children are still to be opened relative to it, and of
// these at most `descriptorLimit` at a time, fewer when the process runs short: the one that was opened
// first, and so lies highest, is closed, and opened again when its turn comes, name by name from the nearest
// ancestor that is open. Nothing that was renamed or replaced meanwhile passes for it: device and inode must
// be the same, and links are not followed.
//
// When no descriptor can be had and none be given up, the thread waits for others to free one, and gives up
// with std::system_error.

#include "Platform/Linux/LargestChildren.h"
#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>
#include <stop_token>
#include <string>

namespace cairnfield {

struct WalkedDirectory {
    WalkedDirectory(WalkedDirectory* above, std::string itsName);

    WalkedDirectory* const parent;  ///< null for the root
    WalkedDirectory* const top;     ///< the child of the root that this is or lies in; null for the root
    const std::string name;

    // Of the thread that has the directory in hand to enter or to read it.
    bool entered = false;

    // Guarded by OpenDirectories.
    bool listed = false;           ///< all entries were read
    int descriptor = -1;           ///< closed again at any time unless pinned
    std::uint32_t pins = 0;        ///< uses of the descriptor under way
    std::uint32_t unopened = 0;    ///< children still to be opened relative to it
    std::uint32_t unfinished = 0;  ///< children with something left to count
    ino_t inode = 0;
    off_t position = 0;      ///< where reading goes on after opening again
    std::int64_t bytes = 0;  ///< of a child of the root: its sum so far
    WalkedDirectory* openedBefore = nullptr;
    WalkedDirectory* openedAfter = nullptr;
};

class OpenDirectories {
public:
    enum class Listing { goesOn, ended };
    enum class Counting { asDirectory, asFile, notAtAll };
    enum class ParentPin { held, none };

    static constexpr std::size_t descriptorLimit = 128;

    OpenDirectories() = default;
    /// Every directory must be gone: counted to its end, refused or abandoned.
    ~OpenDirectories();
    OpenDirectories(const OpenDirectories&) = delete;
    OpenDirectories& operator=(const OpenDirectories&) = delete;

    /// The root, entered, pinned once and open until the end. `standing` is what fstat says of it.
    [[nodiscard]] WalkedDirectory* addRoot(FileDescriptor opened, const struct stat& standing);

    struct Pinned {
        int descriptor = -1;  ///< good until unpin
        int error =
            0;  ///< why the directory cannot be opened again; ENOENT also when another stands in its place
    };
    /// Throws Cancelled, and std::system_error when the process runs out of a resource. Nothing is pinned
    /// then, nor when the answer is an error.
    [[nodiscard]] Pinned pin(WalkedDirectory& directory, const std::stop_token& stop);

    /// A use of the descriptor is over, in which entries of so many bytes were found. A directory whose
    /// listing has ended and that has nothing left below it is gone afterwards. `largest` hears of each child
    /// of the root whose sum becomes final.
    void unpin(WalkedDirectory* directory, std::int64_t bytes, Listing listing, LargestChildren& largest);

    struct Opened {
        FileDescriptor descriptor;
        int error = 0;
    };
    /// Opens a name relative to the descriptor of a pinned parent. Throws as pin does.
    [[nodiscard]] Opened open(int parent, const char* name, const std::stop_token& stop);

    /// Found in a pinned directory, to be opened relative to it later.
    void found(WalkedDirectory& parent, std::span<WalkedDirectory* const> children);

    /// Opened, and pinned in place of its parent.
    void entered(WalkedDirectory& child, FileDescriptor opened, const struct stat& standing);

    /// Will not be entered and is gone afterwards, with the pin of its parent if there was one. `bytes` is
    /// what it weighs.
    void refused(WalkedDirectory* child, Counting counting, std::int64_t bytes, ParentPin pin,
                 LargestChildren& largest);

    /// An unpinned directory that was still to be entered or read further, and will not be.
    void abandon(WalkedDirectory* directory, LargestChildren& largest);

private:
    static constexpr std::chrono::milliseconds shortageCheck{10};
    static constexpr std::chrono::seconds longestShortage{2};
    static constexpr std::size_t keptWhenReopening = 32;

    using Deadline = std::chrono::steady_clock::time_point;

    void makeRoom(int error, Deadline deadline, const std::stop_token& stop);
    [[nodiscard]] int reopen(WalkedDirectory& directory);
    [[nodiscard]] bool closeOne() noexcept;
    void holdOpen(WalkedDirectory& directory, FileDescriptor opened) noexcept;
    [[nodiscard]] int letGo(WalkedDirectory& directory) noexcept;
    void settle(WalkedDirectory* directory, FileDescriptor& closing, LargestChildren* largest);

    std::mutex mutex_;
    dev_t device_ = 0;
    // Guarded by mutex_.
    std::size_t open_ = 0;  ///< without the root
    WalkedDirectory* firstOpened_ = nullptr;
    WalkedDirectory* lastOpened_ = nullptr;
};

}  // namespace cairnfield
