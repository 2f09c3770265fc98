#pragma once

#include "Shared/Concurrency/Executor.h"

#include <memory>

namespace cairnfield {

/// Runs its work one piece at a time and in order, on the threads of another executor. It blocks no thread:
/// work that finds another piece running waits in the queue. After a few dozen pieces it lets others of the
/// pool go first.
///
/// May be destroyed from inside its own last piece of work. The executor below must outlive it.
class Strand final : public Executor {
public:
    explicit Strand(Executor& under);
    ~Strand();

    void post(Work* work) override;

private:
    struct State;
    std::shared_ptr<State> state_;  // held by the drain too, while one is scheduled or running
};

}  // namespace cairnfield
