#pragma once
// Children on Linux: a session each, a pidfd that tells of the end, two pipes; the reactor watches the three
// as one. Callable from any thread. No thread waits for a child, and one takes 4 descriptors. Relies on
// SIGCHLD being neither ignored nor waited for elsewhere.

#include "Platform/ChildProcess.h"
#include "Shared/Concurrency/Reactor.h"

namespace cairnfield {

class LinuxChildProcessStarter final : public ChildProcessStarting {
public:
    /// The reactor outlives every child.
    explicit LinuxChildProcessStarter(Reactor& reactor) noexcept : reactor_(reactor) {}

    /// A NUL in an argument, a path or the environment is refused (EINVAL), since the child would see it cut
    /// short.
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const ChildProcessDescription& description) override;

private:
    Reactor& reactor_;
};

}  // namespace cairnfield
