#include "Platform/Linux/ProcessSignals.h"
#include "support/ForkedOutcome.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <unistd.h>

namespace cairnfield {
namespace {

std::string dispositionOf(int number) {
    struct sigaction now{};
    if (::sigaction(number, nullptr, &now) != 0) return "unknown";
    return now.sa_handler == SIG_IGN ? "ignored" : now.sa_handler == SIG_DFL ? "default" : "handled";
}

void inheritTheWorst() {
    for (int number = 1; number <= SIGRTMAX; ++number) std::signal(number, SIG_IGN);
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

TEST(ProcessSignals, HaveTheirDefaultsWhateverWasInherited) {
    const std::string told = outcomeInChild([] {
        inheritTheWorst();
        settleSignals();
        std::string others;
        for (int number = 1; number <= SIGRTMAX; ++number) {
            const std::string disposition = dispositionOf(number);
            if (disposition == "ignored") others += " " + std::to_string(number);
        }
        return others;
    });
    const std::string expected = " " + std::to_string(SIGHUP) + " " + std::to_string(SIGINT) + " " +
                                 std::to_string(SIGQUIT) + " " + std::to_string(SIGPIPE);
    EXPECT_EQ(told, expected) << "what the terminal sends stays ignored, as nohup asks for";
}

TEST(ProcessSignals, AreNotBlocked) {
    const std::string told = outcomeInChild([]() -> std::string {
        inheritTheWorst();
        settleSignals();
        sigset_t blocked;
        ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        for (int number = 1; number <= SIGRTMAX; ++number) {
            if (::sigismember(&blocked, number) == 1) return std::to_string(number) + " is blocked";
        }
        return "none";
    });
    EXPECT_EQ(told, "none");
}

TEST(ProcessSignals, KeepHowAChildEndedUntilItIsAskedFor) {
    const std::string told = outcomeInChild([]() -> std::string {
        inheritTheWorst();
        settleSignals();
        const pid_t child = ::fork();
        if (child == 0) ::_exit(7);
        int status = 0;
        if (::waitpid(child, &status, 0) != child) return "lost, error " + std::to_string(errno);
        return std::to_string(WEXITSTATUS(status));
    });
    EXPECT_EQ(told, "7");
}

TEST(ProcessSignals, OfTheTerminalAreDefaultWhereNobodyIgnoredThem) {
    const std::string told = outcomeInChild([] {
        for (const int number : {SIGHUP, SIGINT, SIGQUIT}) std::signal(number, SIG_DFL);
        settleSignals();
        return dispositionOf(SIGHUP) + " " + dispositionOf(SIGINT) + " " + dispositionOf(SIGQUIT);
    });
    EXPECT_EQ(told, "default default default");
}

}  // namespace
}  // namespace cairnfield
