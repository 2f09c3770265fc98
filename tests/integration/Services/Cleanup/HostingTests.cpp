// Whole cleanups with a draft pull request through the distribution's gh. The remote is on the public host;
// git reaches it by a command in place of ssh, gh by a socket.

#include "Services/GitHub/GitHubCLIService.h"
#include "integration/Services/Cleanup/CleanupStage.h"
#include "support/GitHubStandIn.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* name = "robin/project";

/// In front of the stage, whose services start threads.
class WithHostingService {
protected:
    TemporaryDirectory serviceHome;
    GitHubStandIn service{serviceHome.path()};
    ScopedEnvironment temporaryFiles{"TMPDIR", serviceHome.makeDirectory("temporary").bytes()};
};

class CleanupThroughGH : public WithHostingService, public Cleanup {
protected:
    CleanupThroughGH() {
        service.addRepository(name, "main");
        const FilePath hosted = home / "hosting/robin/project.git";
        fs::rename(hub.path().bytes(), hosted.bytes());
        fs::create_directory_symlink(hosted.bytes(), hub.path().bytes());
        const FilePath ssh = home.write(
            "ssh", "#!/bin/sh\nshift\ncd '" + (home / "hosting").bytes() + "' && exec sh -c \"$1\"\n");
        fs::permissions(ssh.bytes(), fs::perms(0755));
        project.git({"config", "core.sshCommand", ssh.bytes()});
        project.git({"config", "ssh.variant", "simple"});
        project.pretendRemoteIsAt("git@github.com:robin/project.git");
        feature.write("kept.txt", "changed\n");
    }

    CleanupPlan planWithDraft() {
        CleanupPlan made = plan();
        made.createPullRequest = true;
        return made;
    }
    CleanupReceipt executeWith(GitHubServicing& hosting, const CleanupPlan& made) {
        CleanupCoordinator throughIt(
            {services.pool, services.pool, mounts, services.clock, support.directory()}, git, hosting, vault,
            receipts, inspector);
        return waitFor(services.pool, throughIt.execute(made, nullptr));
    }
    CleanupReceipt executeThroughGH() { return executeWith(gh, planWithDraft()); }
    Json pullRequests() const { return service.state()["repositories"][name]["pullRequests"]; }
    void expectNoBodyLeft() const {
        for (const auto& entry : fs::directory_iterator((serviceHome / "temporary").bytes()))
            EXPECT_FALSE(entry.path().filename().native().starts_with("cairnfield-pr-")) << entry.path();
    }
    /// The work is safe, the worktree is there, and no pull request is spoken of.
    void expectPreservedOnly(const CleanupReceipt& receipt) const {
        EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
        EXPECT_EQ(receipt.preservedCommitSHA, hub.git({"rev-parse", branch}));
        EXPECT_EQ(receipt.pullRequestURL, std::nullopt);
        EXPECT_EQ(receipt.pullRequestNumber, std::nullopt);
        expectIntact(receipt);
    }

    GitHubCLIService gh{commands, GitHubStandIn::executable()};
};

TEST_F(CleanupThroughGH, OpensADraftThatTheReceiptNames) {
    const CleanupReceipt receipt = executeThroughGH();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.pullRequestNumber, 1);
    EXPECT_EQ(receipt.pullRequestURL, "https://github.com/robin/project/pull/1");
    EXPECT_EQ(receipt.remoteHost, "github.com");
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_EQ(receipt.preservedCommitSHA, hub.git({"rev-parse", branch}));
    EXPECT_THAT(storedReceipts(), ElementsAre(receipt));

    ASSERT_EQ(pullRequests().size(), 1U);
    const Json draft = pullRequests()[0];
    EXPECT_EQ(draft["isDraft"], true);
    EXPECT_EQ(draft["headRefName"], branch);
    EXPECT_EQ(draft["baseRefName"], "main");
    EXPECT_EQ(draft["title"], "Preserve project worktree feature");
    const std::string body = draft["body"];
    EXPECT_THAT(body, HasSubstr("| Preserved commit | `" + *receipt.preservedCommitSHA + "` |"));
    EXPECT_THAT(body, HasSubstr("| Original worktree path | `" + feature.path().bytes() + "` |"));
    expectNoBodyLeft();
}

TEST_F(CleanupThroughGH, AsksForABaseBranchThatTheRepositoryDoesNotTell) {
    service.addRepository(name, "trunk");
    project.git({"remote", "set-head", "origin", "--delete"});
    project.git({"update-ref", "-d", "refs/remotes/origin/main"});
    const CleanupReceipt receipt = executeThroughGH();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    ASSERT_EQ(pullRequests().size(), 1U);
    EXPECT_EQ(pullRequests()[0]["baseRefName"], "trunk");
}

TEST_F(CleanupThroughGH, StopsWithTheWorkPushedWhenNobodyIsSignedIn) {
    service.signOut("GH_TOKEN");
    const CleanupReceipt receipt = executeThroughGH();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                StartsWith("The draft pull request could not be created. "));
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("gh auth login"));
    EXPECT_THAT(pullRequests(), IsEmpty());
    expectPreservedOnly(receipt);
}

TEST_F(CleanupThroughGH, StopsWithTheWorkPushedWhenTheServiceRefuses) {
    service.fault("PullRequestCreate", 502, R"({"message": "Bad gateway"})");
    const CleanupReceipt receipt = executeThroughGH();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                StartsWith("The draft pull request could not be created. "));
    expectNoBodyLeft();
    expectPreservedOnly(receipt);
}

TEST_F(CleanupThroughGH, StopsWithTheWorkPushedWhenGHTakesTooLong) {
    commands.fail("pr create", std::make_exception_ptr(CairnfieldError(
                                   CairnfieldError::CommandTimedOut{"gh pr create --draft", 90})));
    const CleanupReceipt receipt = executeThroughGH();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("gh pr create --draft"));
    expectPreservedOnly(receipt);
}

TEST_F(CleanupThroughGH, StopsWithTheWorkPushedWhenThereIsNoGH) {
    UnavailableGitHubService none(CairnfieldError(CairnfieldError::GitHubCLINotInstalled{}));
    const CleanupReceipt receipt = executeWith(none, planWithDraft());
    EXPECT_EQ(receipt.errorSummary,
              CairnfieldError(CairnfieldError::GitHubCLINotInstalled{}).errorDescription());
    expectPreservedOnly(receipt);
}

TEST_F(CleanupThroughGH, NamesTheDraftEvenWhenTheServiceForgetsItAtOnce) {
    service.fault("PullRequestList", 502, R"({"message": "Bad gateway"})");
    service.fault("PullRequestForBranch", 200,
                  R"({"data": {"repository": {"pullRequests": {"nodes": []}}}})");
    const CleanupReceipt receipt = executeThroughGH();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.pullRequestNumber, 1);
    EXPECT_EQ(receipt.pullRequestURL, "https://github.com/robin/project/pull/1");
}

TEST_F(CleanupThroughGH, NeedsNoDraftWhenItIsTriedAgainAndTheWorkIsThereAlready) {
    service.fault("PullRequestCreate", 502, R"({"message": "Bad gateway"})");
    const CleanupReceipt first = executeThroughGH();
    expectPreservedOnly(first);
    const CleanupReceipt second = executeThroughGH();
    EXPECT_EQ(second.errorSummary, std::nullopt);
    EXPECT_EQ(second.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(second.pullRequestNumber, std::nullopt);
    EXPECT_EQ(first.preservedCommitSHA, hub.git({"rev-parse", branch}));
    EXPECT_FALSE(isThere(feature.path()));
}

}  // namespace
}  // namespace cairnfield
