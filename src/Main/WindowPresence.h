#pragma once
// Decides when the window is there: at a start, after it was closed, and when the way back to it goes. A
// person is never left with a program that runs and cannot be reached. Main thread only.
//
// The way back is a status item that something shows. Desktops start their parts in any order and restart
// them at times, so its absence counts only once it has lasted for `patience`.

#include "Platform/StatusItem.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/Isolated.h"
#include "Shared/Concurrency/TaskScope.h"

#include <chrono>
#include <functional>

namespace cairnfield {

enum class Launch {
    byPerson,
    atLogin,  ///< the desktop started it together with the session
};

class WindowPresence final : public Isolated {
public:
    static constexpr std::chrono::seconds patience{4};

    struct Actions {
        std::function<bool()> isWindowOpen;
        std::function<void()> showWindow;
        std::function<void()> quit;
    };

    /// `item` and `clock` outlive this.
    WindowPresence(Executor& mainThread, StatusItem& item, ContinuousClock& clock, Actions actions);
    /// end() must have finished, where begin() was called.
    ~WindowPresence();

    /// Once, from the event loop.
    void begin(Launch launch);
    /// The person closed the window.
    void windowClosed();
    /// From now on nothing is decided.
    Task<> end();

private:
    void hostChanged();
    Task<> waitForHost();
    void missHost();

    StatusItem& item_;
    ContinuousClock& clock_;
    const Actions actions_;
    TaskHandle<> waiting_;  ///< for a host, while there is none
    TaskScope waits_;       ///< those before it too, which were cancelled
    bool hasBegun_ = false;
    bool hasSaidSo_ = false;
};

}  // namespace cairnfield
