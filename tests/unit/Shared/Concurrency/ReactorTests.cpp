#include "Moments.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <functional>
#include <semaphore>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

struct Pipe {
    Pipe() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
            throw std::system_error(errno, std::generic_category());
        out.reset(ends[0]);
        in.reset(ends[1]);
    }
    void put() const { ASSERT_EQ(::write(in.get(), "x", 1), 1); }
    void take() const {
        char byte = 0;
        ASSERT_EQ(::read(out.get(), &byte, 1), 1);
    }
    FileDescriptor out, in;
};

struct ReactorTest : testing::Test {
    Task<Wake> readable(int fd, BootClock::time_point deadline = noDeadline) {
        const Wake wake = co_await reactor.readable(fd, deadline);
        co_return wake;
    }
    Task<Wake> readableShielded(int fd) {
        const Wake wake = co_await reactor.readableShielded(fd);
        co_return wake;
    }
    Task<Wake> until(BootClock::time_point deadline) {
        const Wake wake = co_await reactor.until(deadline);
        co_return wake;
    }

    ThreadPool pool{2};
    Reactor reactor;
};

TEST_F(ReactorTest, WakesWhenTheDescriptorIsReadable) {
    const Pipe pipe;
    const auto handle = spawn(pool, readable(pipe.out.get()));
    pipe.put();
    EXPECT_EQ(waitFor(handle), Wake::ready);
    EXPECT_EQ(waitFor(pool, readable(pipe.out.get())), Wake::ready)
        << "what is readable already does not wait";
}

TEST_F(ReactorTest, EndOfFileCountsAsReadable) {
    Pipe pipe;
    const auto handle = spawn(pool, readable(pipe.out.get()));
    pipe.in.reset();
    EXPECT_EQ(waitFor(handle), Wake::ready);
}

TEST_F(ReactorTest, PlainFileCountsAsReadable) {
    const FileDescriptor file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(file);
    EXPECT_EQ(waitFor(pool, readable(file.get(), BootClock::now() + 1h)), Wake::ready);
}

TEST_F(ReactorTest, ClosedDescriptorFailsTheWait) {
    int fd = -1;
    {
        const Pipe pipe;
        fd = pipe.out.get();
    }
    try {
        waitFor(pool, readable(fd));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EBADF);
    }
}

TEST_F(ReactorTest, SecondWaiterForADescriptorIsRefusedAndTheFirstUnharmed) {
    RunLoop main;
    const Pipe pipe;
    const auto first = spawn(main, readable(pipe.out.get()));
    EXPECT_THROW(waitFor(main, readable(pipe.out.get())), std::system_error);
    pipe.put();
    EXPECT_EQ(waitFor(main, first), Wake::ready);
}

TEST_F(ReactorTest, DescriptorMayBeAwaitedAgainAndAgain) {
    const Pipe pipe;
    const auto reader = [&]() -> Task<int> {
        int count = 0;
        for (; count < 2000; ++count) {
            co_await reactor.readable(pipe.out.get());
            pipe.take();
        }
        co_return count;
    };
    const auto handle = spawn(pool, reader());
    for (int i = 0; i < 2000; ++i) pipe.put();
    EXPECT_EQ(waitFor(handle), 2000);
}

TEST_F(ReactorTest, TimesOutAtTheDeadlineNotBefore) {
    const Pipe pipe;
    const auto deadline = BootClock::now() + 20ms;
    EXPECT_EQ(waitFor(pool, readable(pipe.out.get(), deadline)), Wake::timeout);
    EXPECT_GE(BootClock::now(), deadline);
}

TEST_F(ReactorTest, DeadlineInThePastIsDueAtOnce) {
    const Pipe pipe;
    const auto begin = BootClock::now();
    EXPECT_EQ(waitFor(pool, until(begin - 1h)), Wake::timeout);
    EXPECT_EQ(waitFor(pool, until(BootClock::time_point::min())), Wake::timeout);
    EXPECT_EQ(waitFor(pool, until(BootClock::time_point())), Wake::timeout);
    EXPECT_EQ(waitFor(pool, readable(pipe.out.get(), begin)), Wake::timeout);
    waitFor(pool, reactor.sleep(-1h));
    waitFor(pool, reactor.sleep(0s));
    EXPECT_LT(BootClock::now() - begin, 10s);
}

TEST_F(ReactorTest, ReadableAtAPassedDeadlineIsReady) {
    const Pipe pipe;
    pipe.put();
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(waitFor(pool, readable(pipe.out.get(), BootClock::now() - 1s)), Wake::ready);
}

/// Holds up whoever posts to it from another thread than the test's: here the reactor.
class StallingExecutor final : public Executor {
public:
    explicit StallingExecutor(Executor& under) : under_(under) {}
    void post(Work* work) override {
        if (std::this_thread::get_id() != owner_) {
            arrived.release();
            proceed.acquire();
        }
        under_.post(work);
    }
    std::binary_semaphore arrived{0}, proceed{0};

private:
    Executor& under_;
    const std::thread::id owner_ = std::this_thread::get_id();
};

TEST_F(ReactorTest, ReadableAtItsDeadlineIsReadyHoweverLateTheReactorLooks) {
    RunLoop main;
    StallingExecutor stalling(pool);
    const auto held = spawn(stalling, until(BootClock::now()));
    stalling.arrived.acquire();
    // More of them than the reactor hears of at once, all overdue by the time it looks.
    const std::vector<Pipe> pipes(150);
    std::vector<TaskHandle<Wake>> handles;
    handles.reserve(pipes.size());
    for (const Pipe& pipe : pipes) {
        pipe.put();
        handles.push_back(spawn(main, readable(pipe.out.get(), BootClock::now())));
    }
    const auto nothing = []() -> Task<> { co_return; };
    waitFor(main, nothing());
    stalling.proceed.release();
    for (const auto& handle : handles) EXPECT_EQ(waitFor(main, handle), Wake::ready);
    waitFor(held);
}

TEST_F(ReactorTest, SleepsToTheEndOfTimeUnlessCancelled) {
    const auto handle = spawn(pool, reactor.sleep(BootClock::duration::max()));
    waitFor(pool, reactor.sleep(1ms));
    EXPECT_FALSE(handle.done());
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
}

TEST_F(ReactorTest, ManyTimersEndInTheOrderOfTheirDeadlines) {
    constexpr int count = 5000;
    RunLoop main;
    // A slow machine may need longer to set all of them than until the first is due; then they get longer.
    for (auto lead = 20ms;; lead *= 2) {
        const auto begin = BootClock::now() + lead;
        std::vector<int> order;
        int early = 0, set = 0;
        BootClock::time_point allSet;
        const auto body = [&](int k) -> Task<> {
            if (++set == count) allSet = BootClock::now();
            const auto deadline = begin + k * 1us;
            const Wake wake = co_await reactor.until(deadline);
            EXPECT_EQ(wake, Wake::timeout);
            early += BootClock::now() < deadline;
            order.push_back(k);
        };
        std::vector<Task<>> all;
        all.reserve(count);
        for (int i = 0; i < count; ++i) all.push_back(body(i * 2741 % count));
        waitFor(main, whenAll(std::move(all)));
        EXPECT_EQ(early, 0);
        ASSERT_EQ(order.size(), static_cast<std::size_t>(count));
        if (allSet >= begin) continue;
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
        break;
    }
}

TEST_F(ReactorTest, EarlierDeadlineIsNotHeldUpByALaterOne) {
    const auto late = spawn(pool, reactor.sleep(1h));
    waitFor(pool, reactor.sleep(2ms));
    waitFor(pool, reactor.sleep(1ms));
    EXPECT_FALSE(late.done());
    late.cancel();
    EXPECT_THROW(waitFor(late), Cancelled);
}

TEST_F(ReactorTest, LaterDeadlineStillComesAfterAnEarlierOneWasGivenUp) {
    const auto later = spawn(pool, reactor.sleep(30ms));
    const auto earlier = spawn(pool, reactor.sleep(20ms));
    earlier.cancel();
    EXPECT_THROW(waitFor(earlier), Cancelled);
    waitFor(later);
}

TEST_F(ReactorTest, CancellationEndsTheWaitAndLeavesTheDescriptorFree) {
    const Pipe pipe;
    const auto handle = spawn(pool, readable(pipe.out.get(), BootClock::now() + 1h));
    handle.cancel();
    EXPECT_EQ(waitFor(handle), Wake::cancelled);
    pipe.put();
    EXPECT_EQ(waitFor(pool, readable(pipe.out.get())), Wake::ready);
}

TEST_F(ReactorTest, CancellationDoesNotEndAShieldedWait) {
    RunLoop main;
    const Pipe pipe;
    int woken = 0;
    const auto body = [&]() -> Task<Wake> {
        const Wake first = co_await reactor.readableShielded(pipe.out.get());
        ++woken;
        pipe.take();
        EXPECT_EQ(first, Wake::ready);
        const Wake second = co_await readable(pipe.out.get()).shielded();
        co_return second;
    };
    const auto handle = spawn(main, body());
    handle.cancel();
    waitFor(main, reactor.sleep(1ms));
    EXPECT_EQ(woken, 0);
    pipe.put();
    main.runUntil([&] { return woken == 1; });
    waitFor(main, reactor.sleep(1ms));
    EXPECT_FALSE(handle.done());
    pipe.put();
    EXPECT_EQ(waitFor(main, handle), Wake::ready);
}

TEST_F(ReactorTest, ResumesOnTheExecutorOfTheWaiter) {
    ThreadPool home(1);
    int elsewhere = 0;
    const auto body = [&]() -> Task<> {
        for (int i = 0; i < 100; ++i) {
            co_await reactor.sleep(10us);
            elsewhere += !home.isCurrent();
        }
    };
    waitFor(home, body());
    EXPECT_EQ(elsewhere, 0);
}

TEST_F(ReactorTest, SleepWithstandsAStormOfCancellations) {
    int slept = 0, cancelled = 0;
    for (int k = 0; k < 5000; ++k) {
        const auto handle = spawn(pool, reactor.sleep(std::chrono::microseconds(k % 50)));
        passMoments(k % 900);
        handle.cancel();
        try {
            waitFor(handle);
            ++slept;
        } catch (const Cancelled&) {
            ++cancelled;
        }
    }
    EXPECT_EQ(slept + cancelled, 5000);
    EXPECT_GT(slept, 0);
    EXPECT_GT(cancelled, 0);
}

TEST_F(ReactorTest, ReadableWithstandsAStormOfDataDeadlinesAndCancellations) {
    const Pipe pipe;
    int seen[3] = {};
    for (int k = 0; k < 5000; ++k) {
        const auto deadline = k % 3 ? noDeadline : BootClock::now() + std::chrono::microseconds(k % 40);
        const auto handle = spawn(pool, readable(pipe.out.get(), deadline));
        passMoments(k % 700);
        const bool data = k % 2 == 0;
        if (data) pipe.put();
        handle.cancel();
        ++seen[static_cast<int>(waitFor(handle))];
        if (data) pipe.take();
    }
    EXPECT_EQ(seen[0] + seen[1] + seen[2], 5000);
    EXPECT_GT(seen[static_cast<int>(Wake::ready)], 0);
    EXPECT_GT(seen[static_cast<int>(Wake::cancelled)], 0);
}

TEST_F(ReactorTest, WithstandsManyWaitsCancelledTogether) {
    int ended = 0, cancelled = 0;
    for (int round = 0; round < 30; ++round) {
        std::vector<Pipe> pipes(40);
        std::vector<Task<>> all;
        all.reserve(pipes.size());
        const auto body = [this](int fd, int k) -> Task<> {
            const Wake wake =
                co_await reactor.readable(fd, BootClock::now() + std::chrono::microseconds(k * 20));
            if (wake == Wake::cancelled) throw Cancelled();
            co_await reactor.sleep(std::chrono::microseconds(k));
        };
        int k = 0;
        for (const Pipe& pipe : pipes) all.push_back(body(pipe.out.get(), ++k));
        const auto handle = spawn(pool, whenAll(std::move(all)));
        passMoments(round * 300);
        for (std::size_t i = 0; i < pipes.size(); i += 3) pipes[i].put();
        handle.cancel();
        try {
            waitFor(handle);
            ++ended;
        } catch (const Cancelled&) {
            ++cancelled;
        }
    }
    EXPECT_EQ(ended + cancelled, 30);
}

TEST(Reactor, ClosesItsDescriptorsWhenItGoes) {
    const auto next = [] {
        const FileDescriptor probe(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        return probe.get();
    };
    const int before = next();
    for (int i = 0; i < 100; ++i) const Reactor reactor;
    EXPECT_EQ(next(), before);
}

TEST(BootClock, AddsWithoutGoingBeyondTheEndOfTime) {
    const auto now = BootClock::now();
    EXPECT_EQ(BootClock::add(now, 5s) - now, 5s);
    EXPECT_EQ(now - BootClock::add(now, -5s), 5s);
    EXPECT_EQ(BootClock::add(now, BootClock::duration::max()), noDeadline);
    EXPECT_EQ(BootClock::add(BootClock::time_point(), BootClock::duration::max()), noDeadline);
}

}  // namespace
}  // namespace cairnfield
