#pragma once
// A main thread with a real event loop, which a test runs until something holds.

#include "Main/QtMainThread.h"
#include "support/QtApplication.h"
#include "support/Waiting.h"

#include <QEventLoop>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace cairnfield {

class EventLoopFixture : public testing::Test {
protected:
    /// Runs the event loop until the condition holds. Throws when it never does.
    template <class Condition>
    void until(Condition condition, const std::string& what) {
        QTimer patience;
        patience.setSingleShot(true);
        patience.start(std::chrono::seconds(20));
        QTimer again;  // a condition may come true without an event of this thread
        again.start(std::chrono::milliseconds(5));
        while (!condition()) {
            if (!patience.isActive()) throw std::runtime_error("gave up waiting for " + what);
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    template <class T>
    T run(Task<T> task) {
        const TaskHandle<T> handle = spawn(mainThread, std::move(task));
        return end(handle);
    }
    template <class T>
    T end(TaskHandle<T> handle) {
        until([&handle] { return handle.done(); }, "the end of a task");
        return waitFor(handle);
    }

    QtApplication application;
    QtMainThread mainThread;
};

}  // namespace cairnfield
