#pragma once
// Knows the pull requests that a test tells it of, and remembers what it was asked. Starts no program. One
// thread at a time.

#include "Services/GitHub/GitHubServicing.h"

#include <map>
#include <string>
#include <vector>

namespace cairnfield {

class FakeGitHubService final : public GitHubServicing {
public:
    struct Question {
        std::string headBranch;
        FilePath directory;
        std::optional<std::string> host;

        friend bool operator==(const Question&, const Question&) = default;
    };

    std::map<std::string, PullRequestInfo> pullRequests;  ///< by head branch
    std::optional<CairnfieldError> failure;  ///< thrown by everything but `status` and `defaultBranch`
    std::vector<Question> questions;         ///< by findPullRequest, in order

    Task<GitHubIntegrationStatus> status() override {
        co_return GitHubIntegrationStatus{.isInstalled = true};
    }

    Task<std::optional<std::string>> defaultBranch(FilePath, std::optional<std::string>) override {
        co_return std::nullopt;
    }

    Task<std::optional<PullRequestInfo>> findPullRequest(std::string headBranch, FilePath directory,
                                                         std::optional<std::string> host) override {
        questions.push_back({headBranch, std::move(directory), std::move(host)});
        if (failure) throw CairnfieldError(*failure);
        const auto found = pullRequests.find(headBranch);
        if (found == pullRequests.end()) co_return std::nullopt;
        co_return found->second;
    }

    Task<PullRequestInfo> createDraftPullRequest(std::string base, std::string head, std::string title,
                                                 std::string, FilePath, std::optional<std::string>) override {
        if (failure) throw CairnfieldError(*failure);
        PullRequestInfo created;
        created.number = 1;
        created.title = std::move(title);
        created.state = PullRequestState::draft;
        created.isDraft = true;
        created.headRefName = std::move(head);
        created.baseRefName = std::move(base);
        co_return created;
    }
};

}  // namespace cairnfield
