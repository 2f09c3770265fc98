#include "Services/Git/GitCommandRunner.h"

#include "Services/Process/CommandEnvironment.h"
#include "Shared/Errors/CairnfieldError.h"

#include <utility>

namespace cairnfield {

namespace {

std::string commandLine(const GitArguments& arguments) {
    std::string line = "git ";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i > 0) line += ' ';
        line += arguments[i];
    }
    return line;
}

// None of these refers to the runner, which may be a copy that is gone before they end.

Task<CommandResult> checked(Task<CommandResult> running, GitArguments arguments) {
    CommandResult result = co_await std::move(running);
    if (!result.succeeded()) {
        throw CairnfieldError(
            CairnfieldError::CommandFailed{commandLine(arguments), result.exitCode, result.standardError});
    }
    co_return result;
}

/// The result of a command that succeeded; absent whatever else happened.
Task<std::optional<CommandResult>> successOf(Task<CommandResult> running) {
    try {
        CommandResult result = co_await std::move(running);
        if (result.succeeded()) co_return result;
    } catch (const std::exception&) {
        // No answer is an answer here: callers take it for the unsafe one.
    }
    co_return std::nullopt;
}

Task<std::optional<std::string>> trimmedAnswer(Task<CommandResult> running) {
    const std::optional<CommandResult> result = co_await successOf(std::move(running));
    if (!result) co_return std::nullopt;
    std::string answer = result->trimmedOutput();
    if (answer.empty()) co_return std::nullopt;
    co_return answer;
}

Task<std::optional<FilePath>> pathAnswer(Task<CommandResult> running) {
    std::optional<CommandResult> result = co_await successOf(std::move(running));
    if (!result) co_return std::nullopt;
    std::string bytes = std::move(result->standardOutput);
    if (bytes.ends_with('\n')) bytes.pop_back();
    if (bytes.empty()) co_return std::nullopt;
    co_return FilePath(std::move(bytes));
}

Task<bool> whetherSucceeded(Task<CommandResult> running) {
    const std::optional<CommandResult> result = co_await successOf(std::move(running));
    co_return result.has_value();
}

}  // namespace

Task<CommandResult> GitCommandRunner::run(GitArguments arguments, FilePath directory,
                                          std::chrono::seconds timeout, UsesNetwork usesNetwork) const {
    CommandInvocation invocation;
    invocation.executableURL = gitURL_;
    invocation.arguments = std::move(arguments);
    invocation.currentDirectory = std::move(directory);
    invocation.environment = usesNetwork == UsesNetwork::yes ? CommandEnvironment::network()
                                                             : CommandEnvironment::noninteractive();
    invocation.timeout = timeout;
    return runner_->run(std::move(invocation));
}

Task<CommandResult> GitCommandRunner::runChecked(GitArguments arguments, FilePath directory,
                                                 std::chrono::seconds timeout,
                                                 UsesNetwork usesNetwork) const {
    Task<CommandResult> running = run(arguments, std::move(directory), timeout, usesNetwork);
    return checked(std::move(running), std::move(arguments));
}

Task<std::optional<std::string>> GitCommandRunner::optionalString(GitArguments arguments, FilePath directory,
                                                                  std::chrono::seconds timeout) const {
    return trimmedAnswer(run(std::move(arguments), std::move(directory), timeout));
}

Task<std::optional<FilePath>> GitCommandRunner::optionalPath(GitArguments arguments, FilePath directory,
                                                             std::chrono::seconds timeout) const {
    return pathAnswer(run(std::move(arguments), std::move(directory), timeout));
}

Task<bool> GitCommandRunner::succeeds(GitArguments arguments, FilePath directory,
                                      std::chrono::seconds timeout) const {
    return whetherSucceeded(run(std::move(arguments), std::move(directory), timeout));
}

}  // namespace cairnfield
