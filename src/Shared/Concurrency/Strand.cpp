#include "Shared/Concurrency/Strand.h"

#include <mutex>
#include <utility>

namespace cairnfield {

namespace {
constexpr int piecesInARow = 64;
}

struct Strand::State final : Work {
    State(Executor& executor, const Strand* strand) noexcept : under(executor), owner(strand) {
        run = &drain;
    }

    /// Work posted during the drain is taken by it; the one that finds the queue empty lets go of the state.
    static void drain(Work* work) noexcept {
        State& state = *static_cast<State*>(work);
        std::shared_ptr<State> last;  // freed after the lock is
        for (int budget = piecesInARow; budget > 0; --budget) {
            Work* piece = nullptr;
            {
                const std::lock_guard lock(state.mutex);
                piece = state.queue.pop();
                if (!piece) {
                    last = std::move(state.keep);
                    return;
                }
            }
            state.owner->runNow(piece);
        }
        state.under.post(&state);
    }

    Executor& under;
    const Strand* const owner;
    std::mutex mutex;
    WorkQueue queue;              // guarded by mutex
    std::shared_ptr<State> keep;  // guarded by mutex: set while a drain is scheduled or running
};

Strand::Strand(Executor& under) : state_(std::make_shared<State>(under, this)) {}

Strand::~Strand() = default;

void Strand::post(Work* work) {
    const std::shared_ptr<State> state = state_;  // the work may destroy this strand as soon as it is queued
    {
        const std::lock_guard lock(state->mutex);
        state->queue.push(work);
        if (state->keep) return;
        state->keep = state;
    }
    state->under.post(state.get());
}

}  // namespace cairnfield
