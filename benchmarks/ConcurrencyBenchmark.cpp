// What the words of Shared/Concurrency cost. To hold: a call to an actor and back stays under 0.3
// microseconds on the pool.

#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Concurrency/Semaphore.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"

#include <benchmark/benchmark.h>

namespace cairnfield {
namespace {

struct Counter : Actor {
    explicit Counter(Executor& pool) : Actor(pool) {}
    Task<int> add() { co_return ++count; }
    Task<> addThroughItself(benchmark::State* state) {
        for (auto _ : *state) {
            const int now = co_await add();
            benchmark::DoNotOptimize(now);
        }
    }
    int count = 0;
};

Task<> callActor(benchmark::State* state, Counter* counter) {
    for (auto _ : *state) {
        const int now = co_await counter->add();
        benchmark::DoNotOptimize(now);
    }
}

void actorRoundTrip(benchmark::State& state) {
    ThreadPool pool(2);
    Counter counter(pool);
    runBlocking(callActor(&state, &counter).on(pool));
}
BENCHMARK(actorRoundTrip)->UseRealTime();

void actorCalledByItself(benchmark::State& state) {
    ThreadPool pool(2);
    Counter counter(pool);
    runBlocking(counter.addThroughItself(&state));
}
BENCHMARK(actorCalledByItself)->UseRealTime();

void actorCalledFromALoop(benchmark::State& state) {
    ThreadPool pool(2);
    Counter counter(pool);
    RunLoop main;
    runToEnd(main, callActor(&state, &counter));
}
BENCHMARK(actorCalledFromALoop)->UseRealTime();

Task<> nothing() {
    co_return;
}

Task<> waitForManyAtOnce(benchmark::State* state) {
    for (auto _ : *state) {
        std::vector<Task<>> all;
        all.reserve(100);
        for (int i = 0; i < 100; ++i) all.push_back(nothing());
        co_await whenAll(std::move(all));
    }
}

void hundredTasksAtOnce(benchmark::State& state) {
    ThreadPool pool(2);
    runBlocking(waitForManyAtOnce(&state).on(pool));
}
BENCHMARK(hundredTasksAtOnce)->UseRealTime();

Task<> sleepForNothing(benchmark::State* state, Reactor* reactor) {
    for (auto _ : *state) co_await reactor->until(BootClock::time_point());
}

void deadlineThatIsDue(benchmark::State& state) {
    ThreadPool pool(2);
    Reactor reactor;
    runBlocking(sleepForNothing(&state, &reactor).on(pool));
}
BENCHMARK(deadlineThatIsDue)->UseRealTime();

Task<> takePermits(benchmark::State* state, Semaphore* semaphore) {
    for (auto _ : *state) const Semaphore::Permit permit = co_await semaphore->acquire();
}

void freePermit(benchmark::State& state) {
    Semaphore semaphore(1);
    runBlocking(takePermits(&state, &semaphore));
}
BENCHMARK(freePermit)->UseRealTime();

Task<> callElsewhere(benchmark::State* state, Executor* blocking) {
    const auto function = [] { return 1; };
    for (auto _ : *state) {
        const int one = co_await runOn(*blocking, function);
        benchmark::DoNotOptimize(one);
    }
}

void callOnTheBlockingPool(benchmark::State& state) {
    ThreadPool pool(2), blocking(2);
    runBlocking(callElsewhere(&state, &blocking).on(pool));
}
BENCHMARK(callOnTheBlockingPool)->UseRealTime();

}  // namespace
}  // namespace cairnfield

BENCHMARK_MAIN();
