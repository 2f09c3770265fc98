#include "Main/WindowPresence.h"

#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Logging/Log.h"

#include <utility>

namespace cairnfield {

WindowPresence::WindowPresence(Executor& mainThread, StatusItem& item, ContinuousClock& clock,
                               Actions actions)
    : Isolated(mainThread), item_(item), clock_(clock), actions_(std::move(actions)) {}

WindowPresence::~WindowPresence() = default;

void WindowPresence::begin(Launch launch) {
    hasBegun_ = true;
    item_.onHostChange([this] { hostChanged(); });
    if (launch == Launch::byPerson) actions_.showWindow();
    hostChanged();
}

void WindowPresence::windowClosed() {
    if (hasBegun_ && !item_.hasHost()) actions_.quit();
}

Task<> WindowPresence::end() {
    item_.onHostChange({});
    hasBegun_ = false;
    waits_.cancel();
    co_await waits_.join();
}

void WindowPresence::hostChanged() {
    waiting_.cancel();
    if (!item_.hasHost()) waiting_ = waits_.add(executor(), waitForHost());
}

Task<> WindowPresence::waitForHost() {
    co_await clock_.sleep(patience);
    co_await checkCancelled();  // a host may have come between waking and running
    missHost();
}

void WindowPresence::missHost() {
    if (!std::exchange(hasSaidSo_, true))
        Log::app().warn("Nothing on this desktop shows the status item, so the window is the only way in");
    if (!actions_.isWindowOpen()) actions_.showWindow();
}

}  // namespace cairnfield
