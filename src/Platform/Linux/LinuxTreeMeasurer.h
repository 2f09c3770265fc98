#pragma once
// Measures a tree with the thread that asks and at most one more, which is borrowed from a pool when the tree
// turns out to be large. A pool without a free thread never holds up the walk: it goes on alone. Stateless;
// any number of walks at a time, though the pool bounds the threads that they get. Memory: under 2 MB a walk
// beside what its result holds.

#include "Platform/TreeMeasuring.h"
#include "Shared/Concurrency/Executor.h"
#include "Shared/Time/Date.h"

namespace cairnfield {

class LinuxTreeMeasurer final : public TreeMeasuring {
public:
    enum class Threads { one, two };

    /// `helpers` is where second threads come from; it and `clock` outlive the measurer and every walk.
    LinuxTreeMeasurer(Executor& helpers, const WallClock& clock, Threads threads = Threads::two);

    [[nodiscard]] DirectoryScanResult measure(const FilePath& root, std::stop_token stop) override;
    [[nodiscard]] std::int64_t allocatedSize(const FilePath& item) override;

private:
    Executor& helpers_;
    const WallClock& clock_;
    const Threads threads_;
};

}  // namespace cairnfield
