#pragma once
// Running Qt's event loop until something has happened, for tests whose other side is a bus or a process.

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>

namespace cairnfield {

/// Answers whether the condition came to hold, and fails the test when it does not for a long time.
template <class Condition>
bool runUntil(Condition condition, const char* what) {
    QTimer patience;
    patience.setSingleShot(true);
    patience.start(std::chrono::seconds(30));
    QTimer again;  // a condition may come true without an event of this thread
    again.start(std::chrono::milliseconds(5));
    while (!condition()) {
        if (!patience.isActive()) {
            ADD_FAILURE() << "gave up waiting for " << what;
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

}  // namespace cairnfield
