// The order in which a program closes (tasks, reactor, pools), and what the machine sees of it while it has
// nothing to do.

#include "Moments.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Concurrency/Semaphore.h"
#include "Shared/Concurrency/TaskScope.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

/// Does a little of everything, for ever.
struct Worker : Actor {
    Worker(Executor& pool, Executor& blockingPool, Reactor& waits)
        : Actor(pool), blocking(blockingPool), reactor(waits) {}

    Task<> work(int k) {
        for (;;) {
            const Semaphore::Permit permit = co_await slots.acquire();
            assertIsolated();
            ++rounds;
            const auto function = [k] { return k; };
            const int same = co_await runOn(blocking, function);
            assertIsolated();
            EXPECT_EQ(same, k);
            co_await reactor.sleep(std::chrono::microseconds(k * 3));
            assertIsolated();
        }
    }

    Executor& blocking;
    Reactor& reactor;
    Semaphore slots{2};
    int rounds = 0;
};

/// On the main thread, as the state of a program is.
struct Screen : Isolated {
    Screen(Executor& main, Worker& services, Reactor& waits)
        : Isolated(main), worker(services), reactor(waits) {}

    Task<> refresh() {
        for (;;) {
            assertIsolated();
            ++refreshes;
            co_await reactor.sleep(50us);
        }
    }

    Worker& worker;
    Reactor& reactor;
    int refreshes = 0;
};

TEST(Shutdown, ClosesInOrderInTheMiddleOfEverything) {
    for (int round = 0; round < 100; ++round) {
        RunLoop main;
        ThreadPool pool(2), blocking(1);
        Reactor reactor;
        Worker worker(pool, blocking, reactor);
        Screen screen(main, worker, reactor);
        TaskScope scope([](const std::exception_ptr&) { ADD_FAILURE() << "a task failed"; });
        for (int k = 0; k < 6; ++k) scope.add(pool, worker.work(k));
        scope.add(main, screen.refresh());
        main.runUntil([&] { return screen.refreshes == 1 + round % 4; });
        passMoments(round * 20);
        scope.cancel();
        waitFor(main, scope.join());
        EXPECT_GT(screen.refreshes, 0);
    }
}

TEST(Shutdown, AnActorMayGoRightAfterItsLastCall) {
    ThreadPool pool(2);
    struct Short : Actor {
        explicit Short(Executor& executor) : Actor(executor) {}
        Task<int> answer() { co_return 42; }
    };
    const auto body = [&pool]() -> Task<int> {
        int right = 0;
        for (int i = 0; i < 3000; ++i) {
            const auto actor = std::make_unique<Short>(pool);
            const int answer = co_await actor->answer();
            right += answer == 42;
        }
        co_return right;
    };
    EXPECT_EQ(waitFor(pool, body()), 3000);
}

TEST(ShutdownDeathTest, DestroyingTheReactorUnderAWaitIsAMistake) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            RunLoop main;
            Reactor reactor;
            const auto sleeping = spawn(main, reactor.sleep(1h));
            const auto nothing = []() -> Task<> { co_return; };
            waitFor(main, nothing());
        },
        "a task outlives the reactor");
}

struct ThreadStatus {
    std::string name;
    char state = '?';
    long switches = 0;  // both kinds
};

std::map<int, ThreadStatus> threadsOfThisProcess() {
    std::map<int, ThreadStatus> threads;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        ThreadStatus& thread = threads[std::stoi(entry.path().filename())];
        std::ifstream lines(entry.path() / "status");
        for (std::string line; std::getline(lines, line);) {
            const auto value = [&line] { return line.substr(line.find(':') + 2); };
            if (line.starts_with("Name:")) thread.name = value();
            if (line.starts_with("State:")) thread.state = value()[0];
            if (line.starts_with("voluntary_ctxt_switches:")) thread.switches += std::stol(value());
            if (line.starts_with("nonvoluntary_ctxt_switches:")) thread.switches += std::stol(value());
        }
    }
    return threads;
}

/// The threads that are not among the given ones, once all of them sleep.
std::map<int, ThreadStatus> sleepingThreadsBeside(const std::map<int, ThreadStatus>& others) {
    for (;;) {
        auto threads = threadsOfThisProcess();
        for (const auto& [id, status] : others) threads.erase(id);
        const bool asleep = std::all_of(threads.begin(), threads.end(),
                                        [](const auto& thread) { return thread.second.state == 'S'; });
        if (asleep) return threads;
        std::this_thread::yield();
    }
}

TEST(Idle, NobodyWakesWhileThereIsNothingToDo) {
#if __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the thread sanitizer starts a thread of its own, which wakes";
#endif
    const auto before = threadsOfThisProcess();
    ThreadPool pool(2);
    Reactor reactor;
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const FileDescriptor out(ends[0]), in(ends[1]);
    const auto waiting = [&]() -> Task<> {
        const Wake wake = co_await reactor.readable(out.get(), BootClock::now() + 1h);
        if (wake == Wake::cancelled) throw Cancelled();
    };
    TaskScope scope;
    scope.add(pool, waiting());
    scope.add(pool, reactor.sleep(2h));
    const auto givenUp = scope.add(pool, reactor.sleep(300ms));
    waitFor(pool, reactor.sleep(1ms));
    givenUp.cancel();
    EXPECT_THROW(waitFor(givenUp), Cancelled);

    const auto start = sleepingThreadsBeside(before);
    ASSERT_EQ(start.size(), 3u);
    pollfd nothing{out.get(), POLLIN, 0};
    ASSERT_EQ(::poll(&nothing, 1, 1000), 0);
    const auto end = sleepingThreadsBeside(before);
    int reactors = 0;
    for (const auto& [id, status] : start) {
        reactors += status.name == "reactor";
        EXPECT_EQ(end.at(id).switches, status.switches) << status.name;
    }
    EXPECT_EQ(reactors, 1);

    // And the count does see a wake-up.
    waitFor(pool, reactor.sleep(1ms));
    const auto after = sleepingThreadsBeside(before);
    for (const auto& [id, status] : after) {
        if (status.name == "reactor") EXPECT_GT(status.switches, end.at(id).switches);
    }
    scope.cancel();
    scope.joinBlocking();
}

}  // namespace
}  // namespace cairnfield
