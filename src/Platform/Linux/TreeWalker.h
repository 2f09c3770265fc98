#pragma once
// One thread's part in the walk of a tree: takes directories from a stack of its own or from the other
// threads, reads them and adds up what they hold. Lives on the thread that runs it. What counts is told in
// Platform/TreeMeasuring.h.

#include "Platform/Linux/DirectoryReader.h"
#include "Platform/Linux/LargestChildren.h"
#include "Platform/Linux/OpenDirectories.h"
#include "Platform/Linux/WalkQueue.h"
#include "Shared/Paths/FilePath.h"

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <stop_token>
#include <vector>

namespace cairnfield {

enum class Automounts { none, below };

/// What the threads of a walk share.
struct SharedWalk {
    FilePath root;
    dev_t device = 0;
    Automounts automounts =
        Automounts::none;  ///< below: a directory is asked by name first, lest opening it mounts something
    std::stop_token stop;
    OpenDirectories directories;
    WalkQueue queue;
};

struct WalkTally {
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    std::vector<FilePath> unentered;
    LargestChildren largest;
};

class TreeWalker {
public:
    /// `askForHelp` is called once, when the walk has turned out to be worth a second thread. It may be
    /// empty.
    TreeWalker(SharedWalk& walk, std::function<void()> askForHelp);

    /// Walks until the whole walk is over. `first`, which may be null, is a directory to begin with, entered
    /// and pinned. A failure ends the walk for every thread and is known to the queue.
    void run(WalkedDirectory* first);

    [[nodiscard]] WalkTally& tally() noexcept { return tally_; }

private:
    class Reading;

    void visit(WalkedDirectory* directory);
    [[nodiscard]] int enter(WalkedDirectory& directory);
    [[nodiscard]] int enterFrom(int parent, WalkedDirectory& directory);
    void refuse(WalkedDirectory& directory, OpenDirectories::Counting counting, std::int64_t bytes);
    void weighUnentered(int parent, WalkedDirectory& directory, int error);
    void read(WalkedDirectory* directory, int descriptor);
    void count(Reading& reading, int descriptor, const DirectoryEntry& entry);
    void share(Reading& reading);
    void keepGoing();
    [[nodiscard]] FilePath pathOf(const WalkedDirectory& directory) const;

    SharedWalk& walk_;
    std::function<void()> askForHelp_;
    DirectoryReader reader_;
    WalkTally tally_;
    WalkQueue::Stack stack_;
    std::vector<WalkedDirectory*> found_;  ///< in the directory being read, and not yet on the stack
    WalkedDirectory* inHand_ = nullptr;    ///< taken from the stack and not yet passed on
    std::uint64_t entries_ = 0;
};

}  // namespace cairnfield
