#pragma once
// The watched directories of a stream as a forest: each knows its parent and its own name, so that a renamed
// subtree costs one entry and no path is kept twice. About 90 bytes a directory with a short name. Found by
// watch number and by parent and name. Without input or output, and not shared between threads.

#include "Platform/Linux/IdIndex.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

using WatchId = std::uint32_t;
inline constexpr WatchId noWatchId = 0xFFFFFFFF;

/// What is still to be done about an entry, the more the later it stands.
enum class WatchTask : std::uint8_t {
    none,
    verify,  ///< see whether the directory still stands there
    list,    ///< verify it, and everything below it
    find,    ///< it stood before the watching began: set the watch and list it
    meet     ///< it is new: as find, and report it
};

struct WatchEntry {
    std::string name;  ///< without a parent: the whole path, empty when it is unknown
    int watch = 0;     ///< the system's number; 0 for none
    WatchId parent = noWatchId;
    WatchId firstChild = noWatchId;
    WatchId next = noWatchId;
    WatchId previous = noWatchId;
    std::uint32_t seen = 0;      ///< number of the listing that last came across it
    std::uint32_t reported = 0;  ///< number of the batch that it was last reported in
    WatchTask task = WatchTask::none;
    bool isRoot = false;
    bool isAdrift = false;    ///< it may have moved away
    bool wasMissing = false;  ///< the last look did not find it
};

class WatchTable {
public:
    WatchTable();
    WatchTable(const WatchTable&) = delete;
    WatchTable& operator=(const WatchTable&) = delete;

    /// The reference holds until the entry is removed.
    [[nodiscard]] WatchEntry& operator[](WatchId id) { return entries_[id]; }
    [[nodiscard]] const WatchEntry& operator[](WatchId id) const { return entries_[id]; }

    /// `noWatchId` as parent: an entry of its own, with a path for a name. No entry has that place yet.
    [[nodiscard]] WatchId add(WatchId parent, std::string_view name);
    /// Takes out the entry and everything below it, each told to `removing` first, parents before children.
    /// Ids are used again.
    void remove(WatchId id, const std::function<void(WatchId)>& removing);
    /// The entry, with everything below it, has this place from now on, which no other entry has.
    void move(WatchId id, WatchId parent, std::string_view name);
    void setWatch(WatchId id, int watch);

    [[nodiscard]] WatchId child(WatchId parent, std::string_view name) const;
    [[nodiscard]] WatchId byWatch(int watch) const;
    [[nodiscard]] bool isAtOrBelow(WatchId id, WatchId above) const;
    /// Empty when it is unknown.
    [[nodiscard]] std::string pathOf(WatchId id) const;

    [[nodiscard]] std::size_t size() const noexcept { return entries_.size() - free_.size(); }
    /// How many entries have a watch.
    [[nodiscard]] std::size_t watched() const noexcept { return watched_; }

private:
    using Entries = std::deque<WatchEntry>;
    struct HashOfPlace {
        const Entries* entries;
        std::size_t operator()(WatchId id) const;
    };
    struct HashOfWatch {
        const Entries* entries;
        std::size_t operator()(WatchId id) const;
    };

    void link(WatchId id, WatchId parent);
    void unlink(WatchId id);

    Entries entries_;
    std::vector<WatchId> free_;
    IdIndex<HashOfPlace> places_;  ///< entries with a parent
    IdIndex<HashOfWatch> watches_;
    std::size_t watched_ = 0;
};

}  // namespace cairnfield
