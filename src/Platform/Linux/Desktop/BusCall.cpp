#include "Platform/Linux/Desktop/BusCall.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

#include <mutex>
#include <utility>

namespace cairnfield {

struct BusCall::State {
    enum class Stage { open, waiting, answered, stopped };

    std::mutex mutex;
    Stage stage = Stage::open;              // guarded by mutex
    detail::PromiseBase* waiter = nullptr;  // the same, and only while waiting
    QDBusMessage answer;                    // written once, before answered

    void settle(const QDBusMessage& given) {
        detail::PromiseBase* next = nullptr;
        {
            const std::lock_guard lock(mutex);
            if (stage == Stage::stopped) return;
            answer = given;
            if (stage == Stage::waiting) next = waiter;
            stage = Stage::answered;
        }
        if (next) next->schedule();
    }
};

BusCall::BusCall(const QDBusConnection& bus, const QDBusMessage& question, std::chrono::milliseconds limit,
                 QObject& place, Answered answered)
    : state_(std::make_shared<State>()) {
    const QDBusPendingCall call = bus.asyncCall(question, static_cast<int>(limit.count()));
    const auto finish = [state = state_, answered = std::move(answered)](const QDBusMessage& answer) {
        if (answered) answered(answer);
        state->settle(answer);
    };
    // Without a bus nothing is sent, and nothing would ever finish. Any other answer that is there already
    // takes its turn in the event loop.
    if (call.isFinished() && QDBusError(call.reply()).type() == QDBusError::Disconnected) {
        finish(call.reply());
        return;
    }
    auto* const watcher = new QDBusPendingCallWatcher(call, &place);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &place,
                     [finish](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         finish(finished->reply());
                     });
}

bool BusCall::link() {
    const std::lock_guard lock(state_->mutex);
    if (state_->stage != State::Stage::open) return false;
    state_->stage = State::Stage::waiting;
    state_->waiter = waiter();
    return true;
}

void BusCall::stop() noexcept {
    {
        const std::lock_guard lock(state_->mutex);
        if (state_->stage == State::Stage::answered) return;
        const bool isWaiting = state_->stage == State::Stage::waiting;
        state_->stage = State::Stage::stopped;
        if (!isWaiting) return;
    }
    waiter()->schedule();
}

QDBusMessage BusCall::await_resume() {
    end();
    const std::lock_guard lock(state_->mutex);
    if (state_->stage == State::Stage::stopped) throw Cancelled();
    return state_->answer;
}

}  // namespace cairnfield
