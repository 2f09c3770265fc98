#pragma once
// The only way to git: one located program, and forms of running it that differ in how much of a failure the
// caller wants to see. Knows no git semantics. A plain value, copied freely, used from any task.

#include "Services/Process/ProcessRunning.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

using GitArguments = std::vector<std::string>;

class GitCommandRunner {
public:
    /// Whether a command may ask for credentials: with `yes` it fails at once when it has to.
    enum class UsesNetwork { no, yes };

    /// `runner` outlives every task that uses this value.
    GitCommandRunner(ProcessRunning& runner, FilePath gitURL)
        : runner_(&runner), gitURL_(std::move(gitURL)) {}

    [[nodiscard]] const FilePath& gitURL() const { return gitURL_; }

    /// Any exit status is a result. Throws what ProcessRunning::run throws.
    Task<CommandResult> run(GitArguments arguments, FilePath directory, std::chrono::seconds timeout,
                            UsesNetwork usesNetwork = UsesNetwork::no) const;

    /// As run, and a status other than 0 becomes CommandFailed with the whole command line.
    Task<CommandResult> runChecked(GitArguments arguments, FilePath directory, std::chrono::seconds timeout,
                                   UsesNetwork usesNetwork = UsesNetwork::no) const;

    /// The trimmed output as text; absent when it is empty, the status is not 0, or the run failed in any
    /// way.
    Task<std::optional<std::string>> optionalString(GitArguments arguments, FilePath directory,
                                                    std::chrono::seconds timeout) const;

    /// The same for an answer that is a path: its bytes as they are, without the one newline that git ends it
    /// with.
    Task<std::optional<FilePath>> optionalPath(GitArguments arguments, FilePath directory,
                                               std::chrono::seconds timeout) const;

    /// Whether the status was 0; false when the run failed in any way.
    Task<bool> succeeds(GitArguments arguments, FilePath directory, std::chrono::seconds timeout) const;

private:
    ProcessRunning* runner_;
    FilePath gitURL_;
};

}  // namespace cairnfield
