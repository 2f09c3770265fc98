#include "Platform/Linux/OpenDirectories.h"

#include "Shared/Concurrency/Cancelled.h"

#include <cassert>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace cairnfield {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isShortage(int error) {
    return error == EMFILE || error == ENFILE || error == ENOMEM;
}

/// Whether anything will still be done relative to the directory.
bool isOfUse(const WalkedDirectory& directory) {
    return !directory.listed || directory.unopened > 0 || directory.pins > 0;
}

}  // namespace

WalkedDirectory::WalkedDirectory(WalkedDirectory* above, std::string itsName)
    : parent(above),
      top(above && !above->top ? this : (above ? above->top : nullptr)),
      name(std::move(itsName)) {}

OpenDirectories::~OpenDirectories() {
    assert(open_ == 0 && !firstOpened_);
}

WalkedDirectory* OpenDirectories::addRoot(FileDescriptor opened, const struct stat& standing) {
    auto* root = new WalkedDirectory(nullptr, {});
    root->entered = true;
    root->pins = 1;
    root->inode = standing.st_ino;
    root->descriptor = opened.release();
    device_ = standing.st_dev;
    return root;
}

OpenDirectories::Pinned OpenDirectories::pin(WalkedDirectory& directory, const std::stop_token& stop) {
    const Deadline deadline = std::chrono::steady_clock::now() + longestShortage;
    for (;;) {
        int error = 0;
        {
            const std::lock_guard lock(mutex_);
            if (directory.descriptor < 0) error = reopen(directory);
            if (error == 0) {
                ++directory.pins;
                return {.descriptor = directory.descriptor, .error = 0};
            }
        }
        if (!isShortage(error)) return {.descriptor = -1, .error = error};
        makeRoom(error, deadline, stop);
    }
}

void OpenDirectories::unpin(WalkedDirectory* directory, std::int64_t bytes, Listing listing,
                            LargestChildren& largest) {
    FileDescriptor closing;
    const std::lock_guard lock(mutex_);
    if (directory->top) directory->top->bytes += bytes;
    if (listing == Listing::ended) directory->listed = true;
    --directory->pins;
    settle(directory, closing, &largest);
}

OpenDirectories::Opened OpenDirectories::open(int parent, const char* name, const std::stop_token& stop) {
    FileDescriptor opened(openat(parent, name, openFlags));
    if (opened) return {std::move(opened), 0};
    int error = errno;
    const Deadline deadline = std::chrono::steady_clock::now() + longestShortage;
    while (isShortage(error)) {
        makeRoom(error, deadline, stop);
        opened.reset(openat(parent, name, openFlags));
        if (opened) return {std::move(opened), 0};
        error = errno;
    }
    return {FileDescriptor(), error};
}

void OpenDirectories::found(WalkedDirectory& parent, std::span<WalkedDirectory* const> children) {
    const std::lock_guard lock(mutex_);
    parent.unopened += static_cast<std::uint32_t>(children.size());
    parent.unfinished += static_cast<std::uint32_t>(children.size());
}

void OpenDirectories::entered(WalkedDirectory& child, FileDescriptor opened, const struct stat& standing) {
    FileDescriptor closing;
    const std::lock_guard lock(mutex_);
    child.entered = true;
    child.pins = 1;
    child.inode = standing.st_ino;
    child.top->bytes += standing.st_blocks * 512;
    holdOpen(child, std::move(opened));
    --child.parent->pins;
    --child.parent->unopened;
    settle(child.parent, closing, nullptr);
}

void OpenDirectories::refused(WalkedDirectory* child, Counting counting, std::int64_t bytes, ParentPin pin,
                              LargestChildren& largest) {
    FileDescriptor closing;
    const std::lock_guard lock(mutex_);
    if (child->top != child)
        child->top->bytes += bytes;
    else if (counting != Counting::notAtAll)
        largest.offer(child->name, bytes, counting == Counting::asDirectory);
    WalkedDirectory* parent = child->parent;
    delete child;
    --parent->unopened;
    --parent->unfinished;
    if (pin == ParentPin::held) --parent->pins;
    settle(parent, closing, &largest);
}

void OpenDirectories::abandon(WalkedDirectory* directory, LargestChildren& largest) {
    FileDescriptor closing;
    const std::lock_guard lock(mutex_);
    if (!directory->entered) --directory->parent->unopened;
    directory->listed = true;
    settle(directory, closing, &largest);
}

/// One descriptor more for the process, or a pause in which others may give one back.
void OpenDirectories::makeRoom(int error, Deadline deadline, const std::stop_token& stop) {
    if (stop.stop_requested()) throw Cancelled();
    {
        const std::lock_guard lock(mutex_);
        if (error != ENOMEM && closeOne()) return;
    }
    if (error == ENOMEM || std::chrono::steady_clock::now() >= deadline)
        throw std::system_error(error, std::generic_category(), "opening a directory");
    std::this_thread::sleep_for(shortageCheck);
}

/// Opens the directory through the chain of its names. Of what is opened on the way the lower part stays
/// open: the walk goes on upwards from here, and would otherwise come back through the whole chain for each
/// step.
int OpenDirectories::reopen(WalkedDirectory& directory) {
    std::vector<WalkedDirectory*> chain;
    WalkedDirectory* held = &directory;
    for (; held->descriptor < 0; held = held->parent) chain.push_back(held);
    ++held->pins;
    int from = held->descriptor;
    FileDescriptor passing;
    int error = 0;
    for (std::size_t i = chain.size(); i-- > 0;) {
        WalkedDirectory& next = *chain[i];
        FileDescriptor opened(openat(from, next.name.c_str(), openFlags));
        if (!opened) error = errno;
        while (!opened && isShortage(error) && closeOne()) {
            opened.reset(openat(from, next.name.c_str(), openFlags));
            error = opened ? 0 : errno;
        }
        if (!opened) break;
        struct stat standing = {};
        if (fstat(opened.get(), &standing) != 0) {
            error = errno;
            break;
        }
        if (standing.st_dev != device_ || standing.st_ino != next.inode) {
            error = ENOENT;
            break;
        }
        from = opened.get();
        if (held) --held->pins;
        held = nullptr;
        if (i == 0 || (i < keptWhenReopening && isOfUse(next))) {
            if (!next.listed) lseek(from, next.position, SEEK_SET);
            held = &next;
            ++held->pins;
            holdOpen(next, std::move(opened));
            passing.reset();
        } else {
            passing = std::move(opened);
        }
    }
    if (held) --held->pins;
    return error;
}

bool OpenDirectories::closeOne() noexcept {
    WalkedDirectory* candidate = firstOpened_;
    while (candidate && candidate->pins > 0) candidate = candidate->openedAfter;
    if (!candidate) return false;
    if (!candidate->listed) candidate->position = lseek(candidate->descriptor, 0, SEEK_CUR);
    close(letGo(*candidate));
    return true;
}

void OpenDirectories::holdOpen(WalkedDirectory& directory, FileDescriptor opened) noexcept {
    directory.descriptor = opened.release();
    directory.openedBefore = lastOpened_;
    directory.openedAfter = nullptr;
    (lastOpened_ ? lastOpened_->openedAfter : firstOpened_) = &directory;
    lastOpened_ = &directory;
    if (++open_ > descriptorLimit) static_cast<void>(closeOne());
}

int OpenDirectories::letGo(WalkedDirectory& directory) noexcept {
    if (directory.parent) {
        (directory.openedBefore ? directory.openedBefore->openedAfter : firstOpened_) = directory.openedAfter;
        (directory.openedAfter ? directory.openedAfter->openedBefore : lastOpened_) = directory.openedBefore;
        --open_;
    }
    return std::exchange(directory.descriptor, -1);
}

/// Closes a descriptor that is of no more use, and ends the directories, from this one upwards, that have
/// nothing left to count.
void OpenDirectories::settle(WalkedDirectory* directory, FileDescriptor& closing, LargestChildren* largest) {
    if (directory->parent && directory->descriptor >= 0 && !isOfUse(*directory))
        closing.reset(letGo(*directory));
    while (directory && directory->listed && directory->pins == 0 && directory->unfinished == 0) {
        WalkedDirectory* parent = directory->parent;
        if (directory->top == directory && directory->entered && largest)
            largest->offer(directory->name, directory->bytes, true);
        if (directory->descriptor >= 0) close(letGo(*directory));
        delete directory;
        if (parent) --parent->unfinished;
        directory = parent;
    }
}

}  // namespace cairnfield
