#pragma once

#include "Shared/Concurrency/Isolated.h"
#include "Shared/Concurrency/Strand.h"
#include "Shared/Concurrency/Task.h"

namespace cairnfield {

namespace detail {
/// Comes before `Isolated` among an actor's bases, since that one refers to it.
struct OwnStrand {
    Strand strand;
};
}  // namespace detail

/// Base of an object that is entered by one caller at a time, on the threads of a pool. Callers suspend
/// rather than block; at each `co_await` inside an operation another caller may get in, so state is read anew
/// after each.
class Actor : private detail::OwnStrand, public Isolated {
protected:
    explicit Actor(Executor& pool) : OwnStrand{Strand(pool)}, Isolated(strand) {}
    ~Actor() = default;
};

}  // namespace cairnfield
