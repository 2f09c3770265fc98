#pragma once
// A child process that stands still before and after each of its system calls, so that a test can kill it at
// every one of them.

#include <sys/types.h>

#include <cstdint>
#include <functional>

namespace cairnfield {

class SteppedChild {
public:
    /// The child runs `body` and nothing else, and stands still before its first system call. Not while other
    /// threads run; `body` starts none.
    explicit SteppedChild(const std::function<void()>& body);
    ~SteppedChild() { kill(); }
    SteppedChild(const SteppedChild&) = delete;
    SteppedChild& operator=(const SteppedChild&) = delete;

    /// Runs to the next system call, or to the end of the present one; false when the child has ended.
    bool step();
    /// So many steps, or fewer when it ends before; false when it has ended.
    bool step(int count);

    /// The number of the system call that is about to begin, or -1.
    [[nodiscard]] std::int64_t call() const;

    void kill();

    /// After it has ended by itself: 0 when the body returned, 3 when it threw.
    [[nodiscard]] int exitStatus() const;

private:
    bool waitForStop();

    const pid_t pid_;
    int status_ = 0;
    bool ended_ = false;
};

}  // namespace cairnfield
