#include "Platform/Linux/ProcessSignals.h"

#include <algorithm>
#include <array>
#include <csignal>

namespace cairnfield {

namespace {

constexpr std::array ofTheTerminal{SIGHUP, SIGINT, SIGQUIT};

}  // namespace

void settleSignals() noexcept {
    for (int number = 1; number <= SIGRTMAX; ++number) {
        // Some cannot be set at all, and those have their default already.
        if (std::ranges::find(ofTheTerminal, number) == ofTheTerminal.end())
            static_cast<void>(std::signal(number, SIG_DFL));
    }
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace cairnfield
