#pragma once
// One walk, with the threads that take part in it. Held by each of them, since a helper may get its thread
// only after the end.

#include "Platform/Linux/TreeWalker.h"
#include "Shared/Concurrency/Executor.h"

#include <memory>
#include <mutex>

namespace cairnfield {

class TreeWalk : public std::enable_shared_from_this<TreeWalk> {
public:
    /// `root` is the path under which the open directory is known; it is used for paths in the result only.
    TreeWalk(FilePath root, std::stop_token stop);

    /// Walks on the calling thread, with one more from `helpers` unless that is null. Once. Throws Cancelled
    /// and std::system_error.
    [[nodiscard]] WalkTally run(FileDescriptor opened, const struct stat& standing, Executor* helpers);

private:
    struct Helper;

    void askForHelp(Executor& helpers);
    void help() noexcept;
    void add(WalkTally& part);

    SharedWalk shared_;
    std::mutex mutex_;
    WalkTally whole_;  // guarded by mutex_
};

}  // namespace cairnfield
