#include "Platform/Linux/WatchTable.h"

#include <utility>

namespace cairnfield {

namespace {

std::size_t hashOf(WatchId parent, std::string_view name) {
    return std::hash<std::string_view>{}(name) ^ (std::size_t{parent} << 32);
}

std::size_t hashOf(int watch) {
    return static_cast<std::size_t>(watch);
}

}  // namespace

std::size_t WatchTable::HashOfPlace::operator()(WatchId id) const {
    const WatchEntry& entry = (*entries)[id];
    return hashOf(entry.parent, entry.name);
}

std::size_t WatchTable::HashOfWatch::operator()(WatchId id) const {
    return hashOf((*entries)[id].watch);
}

WatchTable::WatchTable() : places_(HashOfPlace{&entries_}), watches_(HashOfWatch{&entries_}) {}

WatchId WatchTable::add(WatchId parent, std::string_view name) {
    WatchId id = noWatchId;
    if (free_.empty()) {
        id = static_cast<WatchId>(entries_.size());
        entries_.emplace_back();
    } else {
        id = free_.back();
        free_.pop_back();
    }
    entries_[id].name = name;
    link(id, parent);
    return id;
}

void WatchTable::link(WatchId id, WatchId parent) {
    WatchEntry& entry = entries_[id];
    entry.parent = parent;
    if (parent == noWatchId) return;
    entry.next = entries_[parent].firstChild;
    if (entry.next != noWatchId) entries_[entry.next].previous = id;
    entries_[parent].firstChild = id;
    places_.insert(id);
}

void WatchTable::unlink(WatchId id) {
    WatchEntry& entry = entries_[id];
    if (entry.parent == noWatchId) return;
    places_.erase(id);
    if (entry.next != noWatchId) entries_[entry.next].previous = entry.previous;
    (entry.previous == noWatchId ? entries_[entry.parent].firstChild : entries_[entry.previous].next) =
        entry.next;
    entry.parent = entry.next = entry.previous = noWatchId;
}

void WatchTable::remove(WatchId id, const std::function<void(WatchId)>& removing) {
    unlink(id);
    std::vector<WatchId> doomed{id};
    while (!doomed.empty()) {
        const WatchId next = doomed.back();
        doomed.pop_back();
        removing(next);
        for (WatchId child = entries_[next].firstChild; child != noWatchId; child = entries_[child].next) {
            places_.erase(child);
            doomed.push_back(child);
        }
        setWatch(next, 0);
        entries_[next] = WatchEntry{};
        free_.push_back(next);
    }
}

void WatchTable::move(WatchId id, WatchId parent, std::string_view name) {
    std::string kept(name);  // it may be the entry's own
    unlink(id);
    entries_[id].name = std::move(kept);
    link(id, parent);
}

void WatchTable::setWatch(WatchId id, int watch) {
    WatchEntry& entry = entries_[id];
    if (entry.watch == watch) return;
    if (entry.watch != 0) {
        watches_.erase(id);
        --watched_;
    }
    entry.watch = watch;
    if (watch != 0) {
        watches_.insert(id);
        ++watched_;
    }
}

WatchId WatchTable::child(WatchId parent, std::string_view name) const {
    return places_.find(hashOf(parent, name), [this, parent, name](WatchId id) {
        return entries_[id].parent == parent && entries_[id].name == name;
    });
}

WatchId WatchTable::byWatch(int watch) const {
    return watches_.find(hashOf(watch), [this, watch](WatchId id) { return entries_[id].watch == watch; });
}

bool WatchTable::isAtOrBelow(WatchId id, WatchId above) const {
    while (id != above && id != noWatchId) id = entries_[id].parent;
    return id == above;
}

std::string WatchTable::pathOf(WatchId id) const {
    std::vector<const std::string*> names;
    while (entries_[id].parent != noWatchId) {
        names.push_back(&entries_[id].name);
        id = entries_[id].parent;
    }
    std::string path = entries_[id].name;
    if (path.empty()) return path;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (!path.ends_with('/')) path += '/';
        path += **name;
    }
    return path;
}

}  // namespace cairnfield
