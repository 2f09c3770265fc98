#include "support/SteppedChild.h"

#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

#include <csignal>
#include <unistd.h>

namespace cairnfield {

SteppedChild::SteppedChild(const std::function<void()>& body) : pid_(fork()) {
    if (pid_ == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(2);
        raise(SIGSTOP);
        try {
            body();
        } catch (...) {
            _exit(3);
        }
        _exit(0);
    }
    EXPECT_TRUE(waitForStop());
    ptrace(PTRACE_SETOPTIONS, pid_, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
}

bool SteppedChild::step() {
    if (ended_ || ptrace(PTRACE_SYSCALL, pid_, nullptr, nullptr) != 0) return false;
    return waitForStop();
}

bool SteppedChild::step(int count) {
    bool running = !ended_;
    for (int taken = 0; taken < count && running; ++taken) running = step();
    return running;
}

std::int64_t SteppedChild::call() const {
    __ptrace_syscall_info info{};
    ptrace(PTRACE_GET_SYSCALL_INFO, pid_, sizeof info, &info);
    return info.op == PTRACE_SYSCALL_INFO_ENTRY ? static_cast<std::int64_t>(info.entry.nr) : -1;
}

void SteppedChild::kill() {
    if (ended_) return;
    ::kill(pid_, SIGKILL);
    waitpid(pid_, &status_, 0);
    ended_ = true;
}

int SteppedChild::exitStatus() const {
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

bool SteppedChild::waitForStop() {
    waitpid(pid_, &status_, 0);
    ended_ = !WIFSTOPPED(status_);
    return !ended_;
}

}  // namespace cairnfield
