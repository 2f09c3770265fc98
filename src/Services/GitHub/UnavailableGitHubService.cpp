#include "Services/GitHub/GitHubServicing.h"

namespace cairnfield {

Task<GitHubIntegrationStatus> UnavailableGitHubService::status() {
    co_return GitHubIntegrationStatus::unavailable();
}

Task<std::optional<std::string>> UnavailableGitHubService::defaultBranch(
    FilePath /*directory*/, std::optional<std::string> /*host*/) {
    co_return std::nullopt;
}

Task<std::optional<PullRequestInfo>> UnavailableGitHubService::findPullRequest(
    std::string /*headBranch*/, FilePath /*directory*/, std::optional<std::string> /*host*/) {
    throw reason_;
    co_return std::nullopt;  // makes this a coroutine: the failure then comes out of the await
}

Task<PullRequestInfo> UnavailableGitHubService::createDraftPullRequest(
    std::string /*base*/, std::string /*head*/, std::string /*title*/, std::string /*body*/,
    FilePath /*directory*/, std::optional<std::string> /*host*/) {
    throw reason_;
    co_return PullRequestInfo{};  // the same here
}

}  // namespace cairnfield
