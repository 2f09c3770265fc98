#pragma once
// The hosting service through the person's own gh. Immutable, so any task may call it; the object outlives
// what it was asked. A cancelled caller gets Cancelled from whatever can fail.

#include "Services/GitHub/GitHubServicing.h"
#include "Services/Process/ProcessRunning.h"

namespace cairnfield {

/// What gh answers is believed only in the form that was asked for: findPullRequest throws
/// nlohmann::json::exception for anything else. A lookup that gh refuses for another reason than a missing
/// login reads as "no pull request", since gh has one exit status for everything.
///
/// createDraftPullRequest hands the body over in a file of the temporary directory, which is gone when it
/// returns; writing it blocks for a moment, so it is not for the main thread. Once gh has said that the pull
/// request is there, it does not fail any more.
class GitHubCLIService final : public GitHubServicing {
public:
    /// `runner` outlives the service and its tasks.
    GitHubCLIService(ProcessRunning& runner, FilePath executableURL)
        : runner_(runner), executableURL_(std::move(executableURL)) {}

    Task<GitHubIntegrationStatus> status() override;
    Task<std::optional<std::string>> defaultBranch(FilePath directory,
                                                   std::optional<std::string> host) override;
    Task<std::optional<PullRequestInfo>> findPullRequest(std::string headBranch, FilePath directory,
                                                         std::optional<std::string> host) override;
    Task<PullRequestInfo> createDraftPullRequest(std::string base, std::string head, std::string title,
                                                 std::string body, FilePath directory,
                                                 std::optional<std::string> host) override;

private:
    /// Where a command runs and whom it talks to.
    struct Place {
        FilePath directory;
        std::optional<std::string> host;
    };

    Task<CommandResult> run(std::vector<std::string> arguments, std::chrono::seconds timeout,
                            std::optional<Place> place = std::nullopt) const;
    /// Absent when the run failed in any way, whatever the exit status says.
    Task<std::optional<CommandResult>> answer(std::vector<std::string> arguments,
                                              std::chrono::seconds timeout,
                                              std::optional<Place> place = std::nullopt) const;

    ProcessRunning& runner_;
    const FilePath executableURL_;
};

}  // namespace cairnfield
