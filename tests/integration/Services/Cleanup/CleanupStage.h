#pragma once
// A project with a remote over a file path and a linked worktree "feature", and the whole cleanup pipeline
// around it: real git, real files, the real vault and receipts. Only the hosting service is made up.

#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Services/Cleanup/CleanupCoordinator.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "integration/Services/Cleanup/InterferingProcessRunner.h"
#include "integration/Services/Git/GitServices.h"
#include "support/SafeSurroundings.h"
#include "support/SettableVolume.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <list>
#include <mutex>

namespace cairnfield {

/// Answers as told, and remembers what it was asked to create.
class MadeUpGitHub final : public GitHubServicing {
public:
    struct Draft {
        std::string base, head, title, body;
        FilePath directory;
        std::optional<std::string> host;
    };
    std::optional<std::string> answeredDefaultBranch;
    std::optional<CairnfieldError> failure;
    std::vector<Draft> drafts;
    std::vector<std::optional<std::string>> askedHosts;  ///< by defaultBranch

    Task<GitHubIntegrationStatus> status() override { co_return GitHubIntegrationStatus{}; }
    Task<std::optional<std::string>> defaultBranch(FilePath, std::optional<std::string> host) override {
        askedHosts.push_back(std::move(host));
        co_return answeredDefaultBranch;
    }
    Task<std::optional<PullRequestInfo>> findPullRequest(std::string, FilePath,
                                                         std::optional<std::string>) override {
        co_return std::nullopt;
    }
    Task<PullRequestInfo> createDraftPullRequest(std::string base, std::string head, std::string title,
                                                 std::string body, FilePath directory,
                                                 std::optional<std::string> host) override {
        drafts.push_back({base, head, title, body, directory, host});
        if (failure) throw CairnfieldError(*failure);
        PullRequestInfo created;
        created.number = 7;
        created.url = "https://code.example/robin/project/pull/7";
        co_return created;
    }
};

class Cleanup : public testing::Test {
protected:
    static constexpr const char* branch = "cairnfield/recovery/project/20260105-090000";

    Cleanup();

    /// As a refresh sees it, with a size as if it had been measured.
    Worktree review() { return review(feature); }
    Worktree review(const GitRepository& worktree);
    /// The default plan, with the branch name above.
    CleanupPlan plan() { return plan(review()); }
    static CleanupPlan plan(const Worktree& reviewed);
    CleanupReceipt execute(const CleanupPlan& plan);
    CleanupReceipt clean() { return execute(plan()); }
    CleanupPreflightReport preflight(const Worktree& worktree, bool requiresRemote = false) {
        return waitFor(services.pool, coordinator.preflight(worktree, requiresRemote));
    }

    /// "directory: line" of every git command since the last time.
    std::vector<std::string> commandLines();
    std::vector<CleanupReceipt> storedReceipts() { return waitFor(services.pool, receipts.all()); }
    /// "stage" or "stage: detail", as they were reported.
    std::vector<std::string> stages();

    bool isThere(const FilePath& path) const;
    /// The content of a file in that commit of the remote.
    std::string onRemote(const std::string& path, const std::string& commit = branch) const;
    bool remoteHasBranch(const std::string& name = branch) const;
    /// In the hooks of the whole repository.
    void hook(const std::string& name, const std::string& script) const;
    /// Nothing of the person's is gone: the worktree is there, and these hold what they held.
    void expectIntact(const CleanupReceipt& receipt) const;

    std::list<ScopedEnvironment> environment = surroundingsAtTheStart();
    TemporaryDirectory home;
    GitRepository hub;
    GitRepository project;
    GitRepository feature;
    GitServices services;
    InterferingProcessRunner commands{services.commands};
    GitCommandRunner git{commands, services.git.gitURL()};
    GitWorktreeInspector inspector{git, services.scanner, services.detector};
    SettableVolume volume;
    LinuxVolumeInformation mounts;
    ApplicationSupport support{home / "data", home / "config"};
    RecoveryVaultService vault{services.pool, support, volume, services.clock, 1'000'000};
    CleanupReceiptStore receipts{services.pool, support};
    MadeUpGitHub github;
    CleanupCoordinator coordinator{
        {services.pool, services.pool, mounts, services.clock, support.directory()},
        git,
        github,
        vault,
        receipts,
        inspector};

private:
    std::mutex mutex_;
    std::vector<CleanupProgress> reports_;  // guarded by mutex_
};

}  // namespace cairnfield
