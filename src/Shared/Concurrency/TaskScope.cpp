#include "Shared/Concurrency/TaskScope.h"

#include "Shared/Concurrency/RunBlocking.h"

#include <algorithm>
#include <cassert>
#include <mutex>
#include <unordered_set>
#include <vector>

namespace cairnfield {

struct TaskScope::State {
    using Member = std::shared_ptr<detail::TaskState<void>>;

    explicit State(FailureHandler handler) : failed(std::move(handler)) {}

    void report(const detail::Outcome<void>& outcome) const {
        try {
            outcome.get();
        } catch (const Cancelled&) {
            return;
        } catch (...) {
            if (failed) failed(std::current_exception());
        }
    }

    void forget(const Member& member) noexcept {
        std::vector<detail::PromiseBase*> all;
        {
            const std::lock_guard lock(mutex);
            members.erase(member);
            if (members.empty()) all.swap(waiters);
        }
        for (detail::PromiseBase* waiter : all) waiter->schedule();
    }

    const FailureHandler failed;
    std::mutex mutex;
    std::unordered_set<Member> members;         // guarded by mutex
    std::vector<detail::PromiseBase*> waiters;  // guarded by mutex
    bool cancelled = false;                     // guarded by mutex
};

struct TaskScope::Emptied {
    std::shared_ptr<State> state;

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <std::derived_from<detail::PromiseBase> P>
    bool await_suspend(std::coroutine_handle<P> handle) const {
        const std::shared_ptr<State> shared = state;  // once linked, this awaiter may go at any moment
        const std::lock_guard lock(shared->mutex);
        if (shared->members.empty()) return false;
        shared->waiters.push_back(&handle.promise());
        return true;
    }
    void await_resume() const noexcept {}
};

TaskScope::TaskScope(FailureHandler failed) : state_(std::make_shared<State>(std::move(failed))) {}

TaskScope::~TaskScope() {
    assert(size() == 0 && "a task outlives its scope");
}

detail::Root TaskScope::rootOf(std::shared_ptr<State> scope, State::Member member, Task<> body) {
    {
        Task<> task = std::move(body);  // its frame is gone before anyone hears of the end
        try {
            co_await std::move(task);
            member->outcome.set();
        } catch (...) {
            member->outcome.fail();
        }
    }
    scope->report(member->outcome);
    member->finish();
    scope->forget(member);
}

TaskHandle<> TaskScope::add(Executor& executor, Task<> task) {
    auto member = std::make_shared<detail::TaskState<void>>();
    const detail::Root root = rootOf(state_, member, std::move(task));
    bool cancelled = false;
    {
        const std::lock_guard lock(state_->mutex);
        state_->members.insert(member);
        cancelled = state_->cancelled;
    }
    if (cancelled) member->source.request_stop();
    root.start(executor, member->token);
    return TaskHandle<>(std::move(member));
}

void TaskScope::cancel() {
    std::vector<State::Member> all;
    {
        const std::lock_guard lock(state_->mutex);
        state_->cancelled = true;
        all.assign(state_->members.begin(), state_->members.end());
    }
    for (const State::Member& member : all) member->source.request_stop();
}

Task<> TaskScope::join() {
    co_await Emptied{state_};
}

void TaskScope::joinBlocking() {
    runBlocking(join());
}

std::size_t TaskScope::size() const {
    const std::lock_guard lock(state_->mutex);
    return state_->members.size();
}

}  // namespace cairnfield
