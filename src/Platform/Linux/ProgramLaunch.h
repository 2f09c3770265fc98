#pragma once
// One program, launched and not yet looked after: what its owner needs to read it, to wait for it and to
// signal it. Any thread; the calling one is held up until the program has replaced its launcher, about a
// millisecond.

#include "Platform/ChildProcess.h"
#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/types.h>

namespace cairnfield {

struct LaunchedProgram {
    pid_t pid = -1;         ///< its process group and its session, too
    FileDescriptor handle;  ///< a pidfd: readable once the program has ended
    FileDescriptor output;  ///< our ends of the pipes: non-blocking, closed on exec
    FileDescriptor error;
    FileDescriptor activity;  ///< an epoll over these three: readable when one of them is
};

/// The child starts with the default signal dispositions, no signal blocked, and no descriptors but 0, 1
/// and 2. Its standard input, when given, is a file in memory: there is no writer that could block or be
/// signalled. Throws std::system_error, with the program or the directory in its text, and leaves nothing
/// running then.
[[nodiscard]] LaunchedProgram launchProgram(const ChildProcessDescription& description);

}  // namespace cairnfield
