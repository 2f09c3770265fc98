#include "Platform/Linux/Desktop/PendingNotifications.h"

#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace cairnfield {

namespace {

/// Longer delays count as this: what a clock can hold is limited, a delay is not.
constexpr Seconds longestDelay = std::chrono::years(30);

}  // namespace

PendingNotifications::PendingNotifications(Executor& mainThread, ContinuousClock& clock, Post post)
    : Isolated(mainThread),
      clock_(clock),
      post_(std::move(post)),
      timers_([](const std::exception_ptr& failure) {
          try {
              std::rethrow_exception(failure);
          } catch (...) {
              Log::notifications().error("Delayed delivery failed: {}", describeCurrentException());
          }
      }) {}

void PendingNotifications::add(NotificationRequest request) {
    assertIsolated();
    remove(request.identifier);
    const auto delay =
        std::chrono::duration_cast<ContinuousClock::Duration>(std::min(*request.delay, longestDelay));
    const ContinuousClock::Instant due = BootClock::add(clock_.now(), delay);
    const std::uint64_t number = ++lastNumber_;
    waiting_.push_back({number, request.identifier, {}});
    waiting_.back().timer = timers_.add(executor(), wait(number, std::move(request), due));
}

void PendingNotifications::remove(const std::string& identifier) {
    assertIsolated();
    const auto found = std::ranges::find(waiting_, identifier, &Waiting::identifier);
    if (found == waiting_.end()) return;
    const TaskHandle<> timer = found->timer;
    waiting_.erase(found);
    timer.cancel();
}

void PendingNotifications::removeAll() {
    assertIsolated();
    for (const Waiting& removed : std::exchange(waiting_, {})) removed.timer.cancel();
}

std::vector<std::string> PendingNotifications::identifiers() const {
    std::vector<std::string> identifiers;
    identifiers.reserve(waiting_.size());
    for (const Waiting& waiting : waiting_) identifiers.push_back(waiting.identifier);
    return identifiers;
}

Task<> PendingNotifications::stop() {
    removeAll();
    timers_.cancel();
    co_await timers_.join();
}

Task<> PendingNotifications::wait(std::uint64_t number, NotificationRequest request,
                                  ContinuousClock::Instant due) {
    co_await clock_.sleepUntil(due);
    if (!take(number)) co_return;  // removed between its time and its turn
    co_await post_(std::move(request));
}

bool PendingNotifications::take(std::uint64_t number) {
    return std::erase_if(waiting_, [number](const Waiting& waiting) { return waiting.number == number; }) > 0;
}

}  // namespace cairnfield
