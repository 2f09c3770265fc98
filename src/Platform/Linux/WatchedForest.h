#pragma once
// What a stream's parts share: the table of watched directories, the queue of their events, the roots and the
// batch to report. Used by one thread at a time.

#include "Platform/Linux/ChangeBatch.h"
#include "Platform/Linux/InotifyQueue.h"
#include "Platform/Linux/WatchTable.h"
#include "Platform/Linux/WatchedDirectory.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// Where a root's path leads.
struct RootPlace {
    std::string path;  ///< without links
    FileIdentity identity;
    bool isDirectory = false;
    friend bool operator==(const RootPlace&, const RootPlace&) = default;
};

/// None when it leads nowhere.
[[nodiscard]] std::optional<RootPlace> placeOf(const FilePath& root);

struct WatchedRoot {
    FilePath path;                   ///< as given
    WatchId top = noWatchId;         ///< none while it is missing or cannot be watched
    std::optional<RootPlace> place;  ///< as of the last look
    bool hasAutomountBelow = false;
};

struct WatchedForest {
    static constexpr std::size_t noRoot = static_cast<std::size_t>(-1);

    /// Throws std::system_error.
    WatchedForest(const std::vector<FilePath>& paths, std::chrono::milliseconds latency);

    /// Something changed in the directory: for each root that it is below.
    void report(WatchId id);
    void reportRoot(std::size_t root) { batch.add(root, {}); }
    /// Takes the entry out with everything below it and gives up the watches.
    void drop(WatchId id);
    /// The innermost root that the entry is below.
    [[nodiscard]] std::size_t rootOver(WatchId id) const;

    WatchTable table;
    InotifyQueue queue;
    ChangeBatch batch;
    std::vector<WatchedRoot> roots;
    std::vector<std::size_t> lostRoots;  ///< whose top was dropped, for whoever looks after the roots
};

}  // namespace cairnfield
