#pragma once

namespace cairnfield {

/// One piece of work, linked into the queue that holds it. Whoever posts it owns it and keeps it alive until
/// `run` is called; every suspended coroutine carries one, so that a hop between executors allocates nothing.
struct Work {
    Work* next = nullptr;
    void (*run)(Work*) noexcept = nullptr;
};

/// First in, first out, without an owner and without a lock: each executor guards its own.
class WorkQueue {
public:
    void push(Work* work) noexcept {
        work->next = nullptr;
        (last_ ? last_->next : first_) = work;
        last_ = work;
    }
    /// Null when nothing is queued.
    [[nodiscard]] Work* pop() noexcept {
        Work* work = first_;
        if (!work) return nullptr;
        first_ = work->next;
        if (!first_) last_ = nullptr;
        return work;
    }
    [[nodiscard]] bool empty() const noexcept { return !first_; }

private:
    Work* first_ = nullptr;
    Work* last_ = nullptr;
};

/// A place where code runs: a pool of threads, one caller at a time over a pool (`Strand`), or a main
/// thread's loop.
///
/// May be derived from outside this folder: `post` queues the work, and what the executor takes from its
/// queue it runs through `runNow`. An executor must outlive everything posted to it.
class Executor {
public:
    Executor() = default;
    Executor(const Executor&) = delete;
    Executor& operator=(const Executor&) = delete;

    /// From any thread. Never runs the work inside the call, and touches neither the work nor anything that
    /// the work may destroy once another thread can have taken it.
    virtual void post(Work* work) = 0;

    /// Whether the calling thread is inside this executor's work. An executor that owns its thread answers
    /// for the whole thread instead, since a main thread's objects are also used from outside any posted
    /// work.
    [[nodiscard]] virtual bool isCurrent() const noexcept;

protected:
    ~Executor() = default;

    /// Runs the work on this thread. The work may destroy this executor; nothing of it is touched afterwards.
    void runNow(Work* work) const noexcept;
};

}  // namespace cairnfield
