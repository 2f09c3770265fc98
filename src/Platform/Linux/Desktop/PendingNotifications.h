#pragma once
// Notifications that wait for their time, each with a timer of the program's own. Main thread only. They end
// with the program: nothing is stored.

#include "Platform/NotificationCenter.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/Isolated.h"
#include "Shared/Concurrency/TaskScope.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace cairnfield {

class PendingNotifications final : public Isolated {
public:
    using Post = std::function<Task<>(NotificationRequest)>;

    /// `post` is called when a notification's time has come; a failure of it is in the log.
    PendingNotifications(Executor& mainThread, ContinuousClock& clock, Post post);

    /// In place of one with the same identifier. The request has a delay.
    void add(NotificationRequest request);
    void remove(const std::string& identifier);
    void removeAll();
    /// In the order in which they were added.
    [[nodiscard]] std::vector<std::string> identifiers() const;

    /// At the program's end: removes all and returns when nothing of them runs any more. Before destruction.
    Task<> stop();

private:
    struct Waiting {
        std::uint64_t number;
        std::string identifier;
        TaskHandle<> timer;
    };

    Task<> wait(std::uint64_t number, NotificationRequest request, ContinuousClock::Instant due);
    [[nodiscard]] bool take(std::uint64_t number);

    ContinuousClock& clock_;
    const Post post_;
    std::uint64_t lastNumber_ = 0;
    std::vector<Waiting> waiting_;
    TaskScope timers_;
};

}  // namespace cairnfield
