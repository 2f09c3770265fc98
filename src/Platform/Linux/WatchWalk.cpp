#include "Platform/Linux/WatchWalk.h"

#include "Platform/Linux/Automounts.h"
#include "Shared/Logging/Log.h"

#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>

namespace cairnfield {

namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t contentChanging = IN_MODIFY | IN_ATTRIB;
constexpr std::uint32_t directoryMask = contentChanging | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                        IN_MOVED_TO | IN_DELETE_SELF | IN_EXCL_UNLINK | IN_ONLYDIR;

constexpr int misplaced = -1;  // among the system's errors, which are positive

constexpr auto pieceLength = 4ms;
constexpr auto betweenTries = 30s;  // others give watches back without a word
constexpr auto beforeSecondTry = 100ms;
constexpr std::size_t triesAtOnce = 64;

std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat standing = {};
    if (fstatat(AT_FDCWD, path.c_str(), &standing, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0)
        return std::nullopt;
    return FileIdentity{.device = standing.st_dev, .inode = standing.st_ino};
}

bool isDirectory(int parent, const DirectoryEntry& entry) {
    if (entry.kind != EntryKind::unknown) return entry.kind == EntryKind::directory;
    struct stat standing = {};
    return fstatat(parent, entry.name, &standing, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) == 0 &&
           S_ISDIR(standing.st_mode);
}

}  // namespace

WatchWalk::WatchWalk(WatchedForest& forest, std::size_t limit) : forest_(forest), limit_(limit) {
    clock_gettime(CLOCK_REALTIME_COARSE, &start_);  // the clock that files are dated by
}

void WatchWalk::attach(std::size_t root) {
    WatchedRoot& attaching = forest_.roots[root];
    attaching.place = placeOf(attaching.path);
    if (!attaching.place) return;
    const WatchId id = forest_.table.add(noWatchId, attaching.place->path);
    forest_.table[id].isRoot = true;
    attaching.top = id;
    if (attaching.place->isDirectory) {
        forest_.table[id].task = WatchTask::find;
        visit(id);
    } else {
        attachFile(id);
    }
    // What failed here is no loss of a root that was watched.
    std::erase(forest_.lostRoots, root);
}

void WatchWalk::attachFile(WatchId id) {
    const std::string& path = forest_.table[id].name;
    const InotifyQueue::Added added =
        forest_.queue.add(path.c_str(), contentChanging | IN_DELETE_SELF | IN_DONT_FOLLOW);
    const WatchId known = added.watch == 0 ? noWatchId : forest_.table.byWatch(added.watch);
    if (added.watch == 0)
        forest_.drop(id);
    else if (known != noWatchId)
        shareTop(id, known);
    else
        forest_.table.setWatch(id, added.watch);
}

void WatchWalk::expect(WatchId parent, std::string_view name) {
    const WatchId there = forest_.table.child(parent, name);
    if (there == noWatchId) {
        wait(forest_.table.add(parent, name), WatchTask::meet);
        return;
    }
    WatchEntry& entry = forest_.table[there];
    entry.wasMissing = false;
    if (entry.task == WatchTask::none) wait(there, WatchTask::verify);
}

void WatchWalk::meet(WatchId parent, std::string_view name) {
    expect(parent, name);
    visit(forest_.table.child(parent, name));
}

void WatchWalk::lose(WatchId id) {
    const WatchId parent = forest_.table[id].parent;
    const std::string name = forest_.table[id].name;
    forest_.drop(id);
    if (parent != noWatchId) expect(parent, name);
}

void WatchWalk::doubt(WatchId id) {
    WatchEntry& entry = forest_.table[id];
    if (entry.isAdrift) return;
    entry.isAdrift = true;
    adrift_.emplace_back(id, entry.watch);
}

void WatchWalk::settle() {
    for (const auto& [id, watch] : std::exchange(adrift_, {})) {
        WatchEntry& entry = forest_.table[id];
        if (!entry.isAdrift || entry.watch != watch) continue;
        entry.isAdrift = false;
        wait(id, std::max(entry.task, WatchTask::verify));
    }
}

void WatchWalk::relist() {
    for (const WatchedRoot& root : forest_.roots) {
        if (root.top != noWatchId && forest_.table[root.top].task < WatchTask::list)
            wait(root.top, WatchTask::list);
    }
}

void WatchWalk::wait(WatchId id, WatchTask task) {
    forest_.table[id].task = task;
    waiting_.push_back(id);
}

void WatchWalk::goOn() {
    const BootClock::time_point end = BootClock::now() + pieceLength;
    while (!waiting_.empty() && BootClock::now() < end) {
        const WatchId id = waiting_.front();
        waiting_.pop_front();
        visit(id);
    }
    if (waiting_.empty()) parent_ = {};  // an open directory keeps its file system from being unmounted
}

void WatchWalk::visit(WatchId id) {
    WatchTable& table = forest_.table;
    const WatchTask task = std::exchange(table[id].task, WatchTask::none);
    if (task == WatchTask::none) return;
    const std::size_t over = forest_.rootOver(id);
    if (over == WatchedForest::noRoot) {
        // Nobody knows where it is. What is below it may turn up with it.
        if (table[id].parent == noWatchId)
            forest_.drop(id);
        else
            fail(id, task, misplaced);
        return;
    }
    WatchedRoot& root = forest_.roots[over];
    const OpenedDirectory opened = root.top == id ? openWithoutLinks(root.place->path) : open(id, root);
    if (!opened.descriptor) {
        fail(id, task, opened.error);
        return;
    }
    const int descriptor = opened.descriptor.get();
    if (root.top == id) root.hasAutomountBelow = hasAutomountBelow(descriptor);
    const InotifyQueue::Added added = forest_.queue.add(pathOfDescriptor(descriptor).c_str(), directoryMask);
    if (added.watch == 0) {
        fail(id, task, added.error);
        return;
    }
    const bool isNew = table.byWatch(added.watch) == noWatchId;
    struct stat standing = {};
    if (fstat(descriptor, &standing) != 0 || standing.st_dev != root.place->identity.device) {
        if (isNew) forest_.queue.remove(added.watch);
        forest_.drop(id);
    } else if (isNew && table.watched() >= limit_ && table[id].watch == 0) {
        forest_.queue.remove(added.watch);
        runShort(id, task);
    } else {
        arrive(id, task, descriptor, standing, added.watch);
    }
}

OpenedDirectory WatchWalk::open(WatchId id, const WatchedRoot& root) {
    const WatchEntry& entry = forest_.table[id];
    const int error = openParent(entry.parent);
    if (error != 0) return {.descriptor = {}, .error = error};
    const int parent = parent_.descriptor.get();
    if (root.hasAutomountBelow && !standsOn(root.place->identity.device, parent, entry.name))
        return {.descriptor = {}, .error = ENOENT};
    return openInside(parent, entry.name);
}

/// Opens the very directory that the entry stands for: its path may mean another by now. 0, or why not;
/// `misplaced` when it is not there.
int WatchWalk::openParent(WatchId id) {
    const int watch = forest_.table[id].watch;
    if (parent_.id == id && parent_.watch == watch) return 0;
    parent_ = {};
    OpenedDirectory opened = openWithoutLinks(forest_.table.pathOf(id));
    const bool isAway = opened.error == ENOENT || opened.error == ENOTDIR || opened.error == ELOOP;
    if (!opened.descriptor) return isAway ? misplaced : opened.error;
    const InotifyQueue::Added added =
        forest_.queue.add(pathOfDescriptor(opened.descriptor.get()).c_str(), directoryMask);
    if (added.watch != watch || watch == 0) {
        if (added.watch != 0 && forest_.table.byWatch(added.watch) == noWatchId)
            forest_.queue.remove(added.watch);
        return misplaced;
    }
    parent_ = {.id = id, .watch = watch, .descriptor = std::move(opened.descriptor)};
    return 0;
}

/// The entry's place is open and watched.
void WatchWalk::arrive(WatchId id, WatchTask task, int descriptor, const struct stat& standing, int watch) {
    WatchTable& table = forest_.table;
    const WatchId known = table.byWatch(watch);
    if (known != noWatchId && known != id) {
        meetAgain(id, known, task, standing);
        return;
    }
    WatchEntry& entry = table[id];
    entry.isAdrift = entry.wasMissing = false;
    if (known == id && task == WatchTask::verify) return;
    if (known == noWatchId) {
        if (entry.watch != 0) {  // another directory took its place
            forest_.queue.remove(entry.watch);
            while (entry.firstChild != noWatchId) forest_.drop(entry.firstChild);
        }
        table.setWatch(id, watch);
        if (task != WatchTask::find) task = WatchTask::meet;
    }
    if (task == WatchTask::meet || (task == WatchTask::find && changedSinceStart(standing)))
        forest_.report(id);
    list(id, task, descriptor);
}

/// What stands at the entry's place is watched already, as another entry.
void WatchWalk::meetAgain(WatchId id, WatchId known, WatchTask task, const struct stat& standing) {
    WatchTable& table = forest_.table;
    if (table[id].parent == noWatchId) {
        shareTop(id, known);
        return;
    }
    const std::string before = table.pathOf(known);
    const FileIdentity met{.device = standing.st_dev, .inode = standing.st_ino};
    const bool isStillThere = !before.empty() && identityOf(before) == met;
    const bool isInnerRoot = table[known].parent == noWatchId && before == table.pathOf(id);
    if (isStillThere && !isInnerRoot) {
        forest_.drop(id);  // mounted twice: one place is enough
        return;
    }
    if (table.isAtOrBelow(id, known)) {
        doubt(known);  // it cannot lie within itself: the news of its whereabouts is still to come
        fail(id, task, misplaced);
        return;
    }
    const WatchId oldParent = table[known].parent;
    const std::string oldName = table[known].name;
    const WatchId parent = table[id].parent;
    const std::string name = table[id].name;
    table.move(known, noWatchId, {});  // it may stand below the entry that goes
    if (table[id].watch != 0 && !table[id].isRoot) {
        table.move(id, noWatchId, {});
        doubt(id);
    } else {
        forest_.drop(id);
    }
    table.move(known, parent, name);
    table[known].isAdrift = table[known].wasMissing = false;
    forest_.batch.renumber();
    if (!isInnerRoot) forest_.report(known);
    table[known].task = WatchTask::none;  // what was to be done was to be done there
    if (task == WatchTask::list) wait(known, task);
    if (oldParent != noWatchId) expect(oldParent, oldName);
}

/// A root that lies in another, or is given twice.
void WatchWalk::shareTop(WatchId id, WatchId known) {
    for (WatchedRoot& root : forest_.roots) {
        if (root.top == id) root.top = known;
    }
    forest_.table[known].isRoot = true;
    forest_.drop(id);
}

void WatchWalk::fail(WatchId id, WatchTask task, int error) {
    WatchEntry& entry = forest_.table[id];
    switch (error) {
        case ENOSPC:
        case ENOMEM:
        case EMFILE:
        case ENFILE:
            runShort(id, task);
            return;
        case misplaced:
            // Its parent has a new name, or is gone, and the news of it waits in the queue.
            entry.task = task;
            doubt(id);
            doubt(entry.parent);
            return;
        case ENOENT:
        case ENOTDIR:
        case ELOOP:
            // Perhaps it has a new name itself; it keeps its watches until that is known.
            if (entry.wasMissing || entry.watch == 0) {
                forest_.drop(id);
                return;
            }
            entry.wasMissing = true;
            entry.task = task;
            doubt(id);
            return;
        default:
            // Not to be opened any more, but still watched.
            if (entry.watch == 0) forest_.drop(id);
    }
}

void WatchWalk::runShort(WatchId id, WatchTask task) {
    if (!isLogged_) {
        Log::events().warn("No more watches after {} directories; changes in the others are noticed late",
                           forest_.table.watched());
        isLogged_ = true;
    }
    isShort_ = true;
    lastTry_ = BootClock::now();
    forest_.table[id].task = task;
    unwatched_.push_back(id);
    for (WatchId at = id; at != noWatchId; at = forest_.table[at].parent) {
        for (std::size_t root = 0; forest_.table[at].isRoot && root < forest_.roots.size(); ++root) {
            if (forest_.roots[root].top != at || !forest_.batch.setIncomplete(root)) continue;
            forest_.reportRoot(root);
        }
    }
}

void WatchWalk::retry(BootClock::time_point now) {
    if (!isShort_ || isBusy()) return;
    std::size_t tries = std::exchange(freed_, 0);
    if (tries > 0) {
        secondTry_ = now + beforeSecondTry;
    } else if (now >= secondTry_) {
        secondTry_ = noDeadline;
        tries = triesAtOnce;
    } else if (now - lastTry_ >= betweenTries) {
        lastTry_ = now;
        tries = triesAtOnce;
    }
    for (; tries > 0 && !unwatched_.empty(); --tries) {
        waiting_.push_back(unwatched_.front());
        unwatched_.pop_front();
    }
    if (!unwatched_.empty() || isBusy()) return;
    isShort_ = false;
    for (std::size_t root = 0; root < forest_.roots.size(); ++root) {
        if (forest_.batch.setComplete(root)) forest_.reportRoot(root);
    }
}

void WatchWalk::list(WatchId id, WatchTask task, int descriptor) {
    ++listing_;
    DirectoryReader::Filled filled{};
    do {
        filled = reader_.fill(descriptor, DirectoryReader::wholeBuffer);
        while (const std::optional<DirectoryEntry> entry = reader_.next()) {
            if (isDirectory(descriptor, *entry)) come(id, entry->name, task);
        }
    } while (filled == DirectoryReader::Filled::more);
    if (task != WatchTask::list || filled == DirectoryReader::Filled::failed) return;
    for (WatchId child = forest_.table[id].firstChild; child != noWatchId;
         child = forest_.table[child].next) {
        if (forest_.table[child].seen != listing_) doubt(child);
    }
}

/// A listing came across a directory.
void WatchWalk::come(WatchId parent, const char* name, WatchTask task) {
    WatchId child = forest_.table.child(parent, name);
    if (child == noWatchId) {
        child = forest_.table.add(parent, name);
        wait(child, task == WatchTask::find ? WatchTask::find : WatchTask::meet);
    } else if (task == WatchTask::list && forest_.table[child].task < WatchTask::list) {
        wait(child, task);
    }
    forest_.table[child].seen = listing_;
}

bool WatchWalk::changedSinceStart(const struct stat& standing) const noexcept {
    const timespec& changed = standing.st_ctim;
    return changed.tv_sec > start_.tv_sec ||
           (changed.tv_sec == start_.tv_sec && changed.tv_nsec >= start_.tv_nsec);
}

}  // namespace cairnfield
