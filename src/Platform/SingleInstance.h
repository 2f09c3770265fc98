#pragma once
// One program for each person and session: whoever starts it again means the window of the one that runs.
// Main thread only.

#include <functional>
#include <string>

namespace cairnfield {

enum class InstanceClaim {
    isFirst,        ///< this one runs on, and hears of every later start
    wasHandedOver,  ///< another runs and has been asked to show its window
    isElsewhere,    ///< another runs and cannot be reached: it would write the same files
};

class SingleInstance {
public:
    virtual ~SingleInstance() = default;

    /// Once, before any file of the program is read. May take some seconds while the one before is ending.
    /// `activationToken` is the leave to bring a window forward that came with this start; empty for none.
    [[nodiscard]] virtual InstanceClaim claim(const std::string& activationToken) = 0;

    /// The program was started again, with that start's token. Called from the event loop. One observer; a
    /// new one replaces the old. Without one a later start is turned away, and waits for the end of this one.
    virtual void onActivate(std::function<void(std::string activationToken)> observer) = 0;
};

}  // namespace cairnfield
