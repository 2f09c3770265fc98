#include "Main/QtMainThread.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/TaskScope.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/EventLoop.h"
#include "support/QtApplication.h"

#include <QAbstractEventDispatcher>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;

struct Note final : Work {
    explicit Note(std::function<void()> action) : action_(std::move(action)) {
        run = [](Work* work) noexcept { static_cast<Note*>(work)->action_(); };
    }

private:
    std::function<void()> action_;
};

TEST(QtMainThread, RunsWorkInTheEventLoopInOrderAndNotInThePost) {
    const QtApplication qt;
    QtMainThread thread;
    std::vector<int> done;
    Note first([&] { done.push_back(1); });
    Note second([&] { done.push_back(2); });
    thread.post(&first);
    thread.post(&second);
    EXPECT_TRUE(done.empty());
    runUntil([&] { return done.size() == 2; }, "the work");
    EXPECT_THAT(done, ElementsAre(1, 2));
}

TEST(QtMainThread, RunsWhatOtherThreadsPostOnItsOwn) {
    const QtApplication qt;
    QtMainThread thread;
    const std::thread::id own = std::this_thread::get_id();
    int onOwn = 0;
    std::vector<std::unique_ptr<Note>> notes;
    for (int i = 0; i < 1000; ++i) {
        notes.push_back(std::make_unique<Note>([&] {
            if (std::this_thread::get_id() == own && thread.isCurrent()) ++onOwn;
        }));
    }
    std::vector<std::thread> posters;
    for (std::size_t poster = 0; poster < 4; ++poster) {
        posters.emplace_back([&, poster] {
            EXPECT_FALSE(thread.isCurrent());
            for (std::size_t i = poster; i < notes.size(); i += 4) thread.post(notes[i].get());
        });
    }
    runUntil([&] { return onOwn == 1000; }, "all of the work");
    for (std::thread& poster : posters) poster.join();
}

TEST(QtMainThread, LetsTheWindowsEventsInBesideWorkThatNeverEnds) {
    const QtApplication qt;
    QtMainThread thread;
    bool isOver = false;
    bool isQueued = true;
    int turns = 0;
    Note work([&] {
        ++turns;
        isQueued = !isOver;
        if (isQueued) thread.post(&work);
    });
    thread.post(&work);
    QTimer window;
    int events = 0;
    QObject::connect(&window, &QTimer::timeout, [&] { ++events; });
    window.start(0);
    runUntil([&] { return events >= 3 && turns >= 1000; }, "events of the window beside the work");
    isOver = true;
    runUntil([&] { return !isQueued; }, "the last of the work");
}

TEST(QtMainThread, RunsWhatIsQueuedWhenItGoes) {
    const QtApplication qt;
    bool isDone = false;
    Note work([&] { isDone = true; });
    {
        QtMainThread thread;
        thread.post(&work);
    }
    EXPECT_TRUE(isDone);
}

TEST(QtMainThread, IsSilentWhenNothingIsQueued) {
    const QtApplication qt;
    QtMainThread thread;
    bool isDone = false;
    Note work([&] { isDone = true; });
    thread.post(&work);
    runUntil([&] { return isDone; }, "the work");
    QtApplication::processEvents();
    EXPECT_FALSE(QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents))
        << "a descriptor that stays readable would keep the loop awake";
}

TEST(QtMainThread, TakesTasksBackFromAPool) {
    const QtApplication qt;
    QtMainThread thread;
    ThreadPool pool(2);
    const auto away = []() -> Task<bool> { co_return true; };
    const auto home = [&away, &pool, &thread]() -> Task<bool> {
        const bool wasAway = co_await away().on(pool);
        co_return wasAway&& thread.isCurrent();
    };
    const TaskHandle<bool> handle = spawn(thread, home());
    runUntil([&] { return handle.done(); }, "the task");
    bool isHome = false;
    const auto read = [&]() -> Task<> {
        const bool value = co_await handle.value();
        isHome = value;
    };
    const TaskHandle<> reading = spawn(thread, read());
    runUntil([&] { return reading.done(); }, "its value");
    EXPECT_TRUE(isHome);
}

}  // namespace
}  // namespace cairnfield
