#include "Platform/Linux/WatchedForest.h"

#include <sys/stat.h>

#include <cstdlib>
#include <memory>

namespace cairnfield {

std::optional<RootPlace> placeOf(const FilePath& root) {
    struct Freeing {
        void operator()(char* text) const noexcept { std::free(text); }
    };
    const std::unique_ptr<char, Freeing> path(realpath(root.c_str(), nullptr));
    struct stat standing = {};
    if (!path || lstat(path.get(), &standing) != 0) return std::nullopt;
    return RootPlace{.path = path.get(),
                     .identity = {.device = standing.st_dev, .inode = standing.st_ino},
                     .isDirectory = S_ISDIR(standing.st_mode)};
}

WatchedForest::WatchedForest(const std::vector<FilePath>& paths, std::chrono::milliseconds latency)
    : batch(paths, latency) {
    for (const FilePath& path : paths) roots.push_back({.path = path});
}

void WatchedForest::report(WatchId id) {
    if (table[id].reported == batch.number()) return;
    table[id].reported = batch.number();
    std::string relative;
    for (WatchId at = id; at != noWatchId; at = table[at].parent) {
        const WatchEntry& entry = table[at];
        if (entry.isRoot) {
            for (std::size_t root = 0; root < roots.size(); ++root) {
                if (roots[root].top == at) batch.add(root, relative);
            }
        }
        if (!relative.empty()) relative.insert(0, 1, '/');
        relative.insert(0, entry.name);
    }
}

void WatchedForest::drop(WatchId id) {
    table.remove(id, [this](WatchId removed) {
        const WatchEntry& entry = table[removed];
        if (entry.watch != 0) queue.remove(entry.watch);
        if (!entry.isRoot) return;
        for (std::size_t root = 0; root < roots.size(); ++root) {
            if (roots[root].top != removed) continue;
            roots[root].top = noWatchId;
            lostRoots.push_back(root);
        }
    });
}

std::size_t WatchedForest::rootOver(WatchId id) const {
    while (id != noWatchId && !table[id].isRoot) id = table[id].parent;
    for (std::size_t root = 0; id != noWatchId && root < roots.size(); ++root) {
        if (roots[root].top == id) return root;
    }
    return noRoot;
}

}  // namespace cairnfield
