#pragma once
// One call over a bus as a wait of a coroutine: sent when it is made, answered once. Main thread only, but
// for the cancellation of the task that waits, which may come from anywhere.
//
//     const QDBusMessage answer = co_await BusCall(bus, question, limit, place);
//
// A failure is an answer too, of the type error: what the other side failed with, that it did not answer in
// time, or that the bus is gone. A cancelled wait throws Cancelled; the call itself runs on and is told to
// `answered`, for what must be known in any case.

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/LeafWait.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace cairnfield {

class [[nodiscard]] BusCall final : public detail::LeafWait {
public:
    /// On the main thread, before the waiting task goes on. Must not throw.
    using Answered = std::function<void(const QDBusMessage&)>;

    /// Nothing is told any more once `place` is destroyed, and no task may be waiting by then.
    BusCall(const QDBusConnection& bus, const QDBusMessage& question, std::chrono::milliseconds limit,
            QObject& place, Answered answered = nullptr);

    [[nodiscard]] QDBusMessage await_resume();

private:
    struct State;

    bool link() override;
    void stop() noexcept override;

    const std::shared_ptr<State> state_;  // shared with the call, which may outlive the wait
};

}  // namespace cairnfield
