#pragma once
// A program running beside us: how it is described, started, read and ended. One implementation for each
// desktop system; Services/Process builds time limits and results on top of it and is the only caller.

#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/Task.h"
#include "Shared/Environment/Environment.h"
#include "Shared/Paths/FilePath.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

struct ChildProcessDescription {
    FilePath executable;                       ///< absolute; no search takes place
    std::vector<std::string> arguments;        ///< without the program's name
    std::optional<FilePath> workingDirectory;  ///< absent: ours
    Environment environment;                   ///< the child's whole environment
    std::optional<std::string> standardInput;  ///< absent: ours
};

/// How a child ended: its exit status, or the number of the signal that ended it.
struct ChildProcessEnd {
    int status = 0;
};

/// Everything that a child and whoever inherited its streams wrote, byte for byte.
struct ChildProcessOutput {
    std::string output;
    std::string error;
};

/// What a wait for a child met first.
enum class ChildProcessWait { ended, deadline, cancelled };

/// A started child, in a session and process group of its own. One task at a time uses it. It must
/// not be destroyed before a wait has answered `ended`: a child is never abandoned.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    /// Appends what the child writes while it waits for it. `ended`: the child has ended, and all who
    /// inherited its streams have closed them. The other two come only while the child itself lives, and the
    /// wait can be taken up again then: once it has ended, neither the deadline nor cancellation cuts short
    /// the reading of what it started. Cancellation of the calling task is an answer, not an exception.
    /// Throws std::system_error when reading or waiting fails.
    virtual Task<ChildProcessWait> waitForEnd(ContinuousClock::Instant deadline,
                                              ChildProcessOutput& into) = 0;
    /// The same without deadline and deaf to cancellation.
    virtual Task<> waitForEndShielded(ChildProcessOutput& into) = 0;

    /// One SIGTERM to the child's process group. Does nothing when the child has ended.
    virtual void terminate() noexcept = 0;

    /// After a wait has answered `ended`.
    [[nodiscard]] virtual ChildProcessEnd end() const = 0;
};

/// Starts children. Callable from any thread.
class ChildProcessStarting {
public:
    virtual ~ChildProcessStarting() = default;

    /// Throws std::system_error when the program cannot be started: it is missing or not executable, the
    /// working directory cannot be entered, or a resource ran out. Then nothing is left running.
    [[nodiscard]] virtual std::unique_ptr<ChildProcess> start(const ChildProcessDescription& description) = 0;
};

}  // namespace cairnfield
