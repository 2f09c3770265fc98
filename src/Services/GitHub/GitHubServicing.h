#pragma once
// What the program asks of the hosting service, always through the person's own gh: no tokens are held and no
// requests are made here.

#include "Models/Git.h"
#include "Shared/Concurrency/Task.h"
#include "Shared/Errors/CairnfieldError.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

struct GitHubIntegrationStatus {
    bool isInstalled = false;
    std::optional<std::string> version;  ///< first line of `gh --version`
    std::vector<std::string> authenticatedHosts;
    std::optional<std::string> executablePath;
    std::optional<std::string> errorDescription;  ///< what is wrong, in words for the person

    [[nodiscard]] static GitHubIntegrationStatus unavailable() { return {}; }

    friend bool operator==(const GitHubIntegrationStatus&, const GitHubIntegrationStatus&) = default;
};

class GitHubServicing {
public:
    virtual ~GitHubServicing() = default;

    virtual Task<GitHubIntegrationStatus> status() = 0;
    /// Absent when it cannot be learned.
    virtual Task<std::optional<std::string>> defaultBranch(FilePath directory,
                                                           std::optional<std::string> host) = 0;
    /// Throws CairnfieldError; absent when the branch has none.
    virtual Task<std::optional<PullRequestInfo>> findPullRequest(std::string headBranch, FilePath directory,
                                                                 std::optional<std::string> host) = 0;
    /// Throws CairnfieldError.
    virtual Task<PullRequestInfo> createDraftPullRequest(std::string base, std::string head,
                                                         std::string title, std::string body,
                                                         FilePath directory,
                                                         std::optional<std::string> host) = 0;
};

/// Stands in where there is no gh: reports itself unavailable and fails with its reason.
class UnavailableGitHubService final : public GitHubServicing {
public:
    explicit UnavailableGitHubService(CairnfieldError reason) : reason_(std::move(reason)) {}

    Task<GitHubIntegrationStatus> status() override;
    Task<std::optional<std::string>> defaultBranch(FilePath directory,
                                                   std::optional<std::string> host) override;
    Task<std::optional<PullRequestInfo>> findPullRequest(std::string headBranch, FilePath directory,
                                                         std::optional<std::string> host) override;
    Task<PullRequestInfo> createDraftPullRequest(std::string base, std::string head, std::string title,
                                                 std::string body, FilePath directory,
                                                 std::optional<std::string> host) override;

private:
    CairnfieldError reason_;
};

}  // namespace cairnfield
