#include "Platform/Linux/TreeWalker.h"

#include "Shared/Concurrency/Cancelled.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::uint64_t entriesBetweenLooks = 64;
constexpr std::uint64_t entriesWorthHelp = 2048;

// With so many directories waiting on the stack a directory is read in smaller bites: the memory of the walk
// stays bounded though each of the directories above may hold any number of others.
constexpr std::size_t manyWaiting = 1024;
constexpr std::size_t tooManyWaiting = 2048;
constexpr std::size_t fewFound = 8;

constexpr int byNameFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;

std::int64_t allocatedBytes(const struct stat& standing) {
    return std::int64_t{standing.st_blocks} * 512;
}

/// How many directories may be found in one go while so many wait; 0 for any number.
std::size_t foundAtOnce(std::size_t waiting) {
    if (waiting < manyWaiting) return 0;
    return waiting < tooManyWaiting ? fewFound : 1;
}

void throwIfStarved(int error) {
    if (error == ENOMEM || error == EMFILE || error == ENFILE)
        throw std::system_error(error, std::generic_category(), "reading a directory");
}

}  // namespace

/// A pinned directory while one of its blocks is counted. At the end, also at that by a failure, what was
/// found in it goes on the stack and its descriptor is given back.
class TreeWalker::Reading {
public:
    Reading(TreeWalker& walker, WalkedDirectory* directory) : walker_(walker), directory_(directory) {}
    ~Reading() {
        tellFound();
        walker_.walk_.directories.unpin(directory_, bytes_, listing_, walker_.tally_.largest);
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    [[nodiscard]] WalkedDirectory* directory() const noexcept { return directory_; }
    [[nodiscard]] bool isRoot() const noexcept { return !directory_->parent; }

    void add(std::int64_t bytes) {
        bytes_ += bytes;
        walker_.tally_.bytes += bytes;
    }
    void found(const char* name) {
        auto child = std::make_unique<WalkedDirectory>(directory_, name);
        walker_.found_.push_back(child.get());
        static_cast<void>(child.release());
    }
    void tellFound() {
        if (walker_.found_.empty()) return;
        walker_.walk_.directories.found(*directory_, walker_.found_);
        walker_.stack_.insert(walker_.stack_.end(), walker_.found_.begin(), walker_.found_.end());
        walker_.found_.clear();
    }
    /// The directory has more: it goes back on the stack, from which another thread may take it at once.
    void passOn() {
        listing_ = OpenDirectories::Listing::goesOn;
        walker_.stack_.push_back(directory_);
        walker_.inHand_ = nullptr;
    }

private:
    TreeWalker& walker_;
    WalkedDirectory* const directory_;
    std::int64_t bytes_ = 0;
    OpenDirectories::Listing listing_ = OpenDirectories::Listing::ended;
};

TreeWalker::TreeWalker(SharedWalk& walk, std::function<void()> askForHelp)
    : walk_(walk), askForHelp_(std::move(askForHelp)) {}

void TreeWalker::run(WalkedDirectory* first) {
    try {
        if (first) read(first, first->descriptor);
        while (!stack_.empty() || walk_.queue.take(stack_)) {
            inHand_ = stack_.back();
            stack_.pop_back();
            visit(inHand_);
            inHand_ = nullptr;
        }
    } catch (...) {
        walk_.queue.end(std::current_exception());
    }
    if (inHand_) stack_.push_back(inHand_);
    for (; !stack_.empty(); stack_.pop_back()) walk_.directories.abandon(stack_.back(), tally_.largest);
}

void TreeWalker::visit(WalkedDirectory* directory) {
    keepGoing();
    if (walk_.queue.isWanted() && !stack_.empty()) walk_.queue.hand(stack_);
    if (!directory->entered) {
        const int descriptor = enter(*directory);
        if (descriptor >= 0) read(directory, descriptor);
        return;
    }
    const OpenDirectories::Pinned pinned = walk_.directories.pin(*directory, walk_.stop);
    if (pinned.descriptor >= 0) {
        read(directory, pinned.descriptor);
        return;
    }
    if (pinned.error != ENOENT) tally_.unentered.push_back(pathOf(*directory));
    inHand_ = nullptr;
    walk_.directories.abandon(directory, tally_.largest);
}

/// The directory's descriptor, pinned; -1 when it was refused.
int TreeWalker::enter(WalkedDirectory& directory) {
    const OpenDirectories::Pinned parent = walk_.directories.pin(*directory.parent, walk_.stop);
    if (parent.descriptor < 0) {
        if (parent.error != ENOENT) tally_.unentered.push_back(pathOf(directory));
        ++tally_.files;
        inHand_ = nullptr;
        walk_.directories.refused(&directory, OpenDirectories::Counting::asFile, 0,
                                  OpenDirectories::ParentPin::none, tally_.largest);
        return -1;
    }
    try {
        return enterFrom(parent.descriptor, directory);
    } catch (...) {
        refuse(directory, OpenDirectories::Counting::notAtAll, 0);
        throw;
    }
}

int TreeWalker::enterFrom(int parent, WalkedDirectory& directory) {
    struct stat standing = {};
    const char* name = directory.name.c_str();
    if (walk_.automounts == Automounts::below && fstatat(parent, name, &standing, byNameFlags) == 0 &&
        standing.st_dev != walk_.device) {
        refuse(directory, OpenDirectories::Counting::notAtAll, 0);
        return -1;
    }
    OpenDirectories::Opened opened = walk_.directories.open(parent, name, walk_.stop);
    if (opened.descriptor && fstat(opened.descriptor.get(), &standing) != 0) {
        opened.error = errno;
        opened.descriptor.reset();
    }
    if (!opened.descriptor) {
        weighUnentered(parent, directory, opened.error);
        return -1;
    }
    if (standing.st_dev != walk_.device) {
        refuse(directory, OpenDirectories::Counting::notAtAll, 0);
        return -1;
    }
    const int descriptor = opened.descriptor.get();
    tally_.bytes += allocatedBytes(standing);
    walk_.directories.entered(directory, std::move(opened.descriptor), standing);
    return descriptor;
}

void TreeWalker::refuse(WalkedDirectory& directory, OpenDirectories::Counting counting, std::int64_t bytes) {
    inHand_ = nullptr;
    tally_.bytes += bytes;
    if (counting == OpenDirectories::Counting::asFile) ++tally_.files;
    walk_.directories.refused(&directory, counting, bytes, OpenDirectories::ParentPin::held, tally_.largest);
}

/// Whatever stands now under the name of a directory that could not be opened.
void TreeWalker::weighUnentered(int parent, WalkedDirectory& directory, int error) {
    using Counting = OpenDirectories::Counting;
    throwIfStarved(error);
    struct stat standing = {};
    if (fstatat(parent, directory.name.c_str(), &standing, byNameFlags) != 0) {
        throwIfStarved(errno);
        if (error != ENOENT) tally_.unentered.push_back(pathOf(directory));
        refuse(directory, Counting::asFile, 0);
    } else if (S_ISLNK(standing.st_mode) || standing.st_dev != walk_.device) {
        refuse(directory, Counting::notAtAll, 0);
    } else if (!S_ISDIR(standing.st_mode)) {
        refuse(directory, Counting::asFile, allocatedBytes(standing));
    } else {
        tally_.unentered.push_back(pathOf(directory));
        refuse(directory, Counting::asDirectory, allocatedBytes(standing));
    }
}

void TreeWalker::read(WalkedDirectory* directory, int descriptor) {
    Reading reading(*this, directory);
    const std::size_t atOnce = foundAtOnce(stack_.size());
    const auto filled =
        reader_.fill(descriptor, atOnce == 0 ? DirectoryReader::wholeBuffer : DirectoryReader::smallBite);
    if (filled == DirectoryReader::Filled::failed && reader_.error() != ENOENT) {
        throwIfStarved(reader_.error());
        tally_.unentered.push_back(pathOf(*directory));
    }
    bool more = filled == DirectoryReader::Filled::more;
    if (more && atOnce == 0) reading.passOn();
    while (const std::optional<DirectoryEntry> entry = reader_.next()) {
        if (++entries_ % entriesBetweenLooks == 0) share(reading);
        count(reading, descriptor, *entry);
        if (atOnce != 0 && found_.size() >= atOnce) {
            lseek(descriptor, entry->next, SEEK_SET);
            more = true;
            break;
        }
    }
    if (more && atOnce != 0) reading.passOn();
    inHand_ = nullptr;
}

void TreeWalker::count(Reading& reading, int descriptor, const DirectoryEntry& entry) {
    if (entry.kind == EntryKind::link) return;
    if (entry.kind == EntryKind::directory) {
        reading.found(entry.name);
        return;
    }
    struct stat standing = {};
    if (fstatat(descriptor, entry.name, &standing, byNameFlags) != 0) {
        throwIfStarved(errno);
        standing.st_dev = walk_.device;  // vanished, or not to be asked: it weighs nothing
    }
    if (S_ISLNK(standing.st_mode) || standing.st_dev != walk_.device) return;
    if (S_ISDIR(standing.st_mode)) {
        reading.found(entry.name);
        return;
    }
    ++tally_.files;
    reading.add(allocatedBytes(standing));
    if (reading.isRoot()) tally_.largest.offer(entry.name, allocatedBytes(standing), false);
}

/// A look around in the middle of a block: the rest of it keeps this thread busy, so everything else may go.
void TreeWalker::share(Reading& reading) {
    keepGoing();
    if (askForHelp_ && entries_ >= entriesWorthHelp && (!stack_.empty() || !found_.empty()))
        std::exchange(askForHelp_, nullptr)();
    if (!walk_.queue.isWanted()) return;
    reading.tellFound();
    if (!stack_.empty()) walk_.queue.hand(stack_);
}

void TreeWalker::keepGoing() {
    if (walk_.stop.stop_requested() || walk_.queue.isOver()) throw Cancelled();
}

FilePath TreeWalker::pathOf(const WalkedDirectory& directory) const {
    std::vector<const std::string*> names;
    for (const WalkedDirectory* at = &directory; at->parent; at = at->parent) names.push_back(&at->name);
    std::string path = walk_.root.bytes();
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (!path.ends_with('/')) path += '/';
        path += **name;
    }
    return FilePath(std::move(path));
}

}  // namespace cairnfield
