#pragma once
// The one door to external programs: a command with its whole environment and a hard time limit goes in, a
// result with complete output comes out. Knows nothing of git: any exit status is a normal result.

#include "Platform/ChildProcess.h"
#include "Shared/Concurrency/Task.h"
#include "Shared/Paths/FilePath.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

struct CommandInvocation {
    FilePath executableURL;  ///< absolute path of the program
    std::vector<std::string> arguments;
    std::optional<FilePath> currentDirectory;  ///< absent: the application's
    Environment environment;                   ///< the child's whole environment
    std::chrono::nanoseconds timeout{};        ///< on the clock that runs on through suspend
    std::optional<std::string> standardInput;  ///< absent: the application's

    /// The program's name and at most three arguments: what errors and log lines call the command.
    [[nodiscard]] std::string displayName() const;
};

struct CommandResult {
    std::int32_t exitCode = 0;   ///< exit status, or the number of the signal that ended the child
    std::string standardOutput;  ///< byte for byte
    std::string standardError;   ///< repaired and trimmed

    [[nodiscard]] bool succeeded() const { return exitCode == 0; }
    [[nodiscard]] std::string outputString() const;   ///< repaired, not trimmed
    [[nodiscard]] std::string trimmedOutput() const;  ///< repaired and trimmed
};

class ProcessRunning {
public:
    virtual ~ProcessRunning() = default;

    /// Runs one command; any number may run at once, from any task. Throws CairnfieldError: CommandFailed
    /// with exit code -1 when the program cannot be launched, CommandTimedOut when the limit passed while the
    /// child was alive; and Cancelled when the calling task was cancelled. Returns or throws only after the
    /// child has gone and its output has ended.
    virtual Task<CommandResult> run(CommandInvocation invocation) = 0;
};

}  // namespace cairnfield
