#pragma once
// Sends notifications on their way, so that what is news once is not lost on it. Main thread only.
//
// A delivery runs to its end, whoever asked for it is cancelled meanwhile. One that no service was there for
// is kept and tried once more when a service appears, if it is still news by then; a later one under its
// identifier takes its place. Whatever else goes wrong is told and not tried again.

#include "Services/Notifications/NotificationDelivering.h"
#include "Shared/Concurrency/Isolated.h"
#include "Shared/Concurrency/TaskScope.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

class NotificationOutbox final : public Isolated {
public:
    struct Judgement {
        /// How every try ended; absent: it was delivered.
        std::function<void(const std::optional<std::string>& failure)> tried;
        std::function<bool(const NotificationRequestPayload&)> isStillNews;
    };

    /// All of them outlive this. The deliveries under way are tasks of the scope.
    NotificationOutbox(Executor& mainThread, TaskScope& tasks, NotificationDelivering& notifications,
                       NotificationCenter& center, Judgement judgement);

    /// Gives what went wrong.
    Task<std::optional<std::string>> deliver(NotificationRequestPayload payload);

    /// At the end of the program: nothing is tried again from now on.
    void end();

private:
    struct Try {
        std::optional<std::string> failure;
        bool foundNoService = false;
    };

    Task<> deliverToItsEnd(NotificationRequestPayload payload, std::optional<std::string>& failure);
    Task<Try> tryOnce(NotificationRequestPayload payload);
    Task<> askForLeave();
    void serviceAppeared();
    Task<> deliverWhatWaits();

    TaskScope& tasks_;
    NotificationDelivering& notifications_;
    NotificationCenter& center_;
    const Judgement judgement_;
    std::vector<NotificationRequestPayload> waiting_;  ///< for a service, oldest first
    std::uint64_t appearances_ = 0;
};

}  // namespace cairnfield
