#include "ui/screenshots/ReviewScenes.h"

#include "support/CleanupReviewStaging.h"
#include "ui/screenshots/SampleState.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

constexpr QSize smallest{760, 520};
constexpr QSize tall{1080, 1000};
constexpr QSize taller{1080, 1200};

using Then = std::function<void(CleanupReviewViewModel&)>;

Worktree sample(const std::string& branch) {
    const std::vector<Worktree> all = sampleWorktrees();
    return *std::ranges::find(all, branch, &Worktree::displayBranch);
}

// Everything that a review can find, with names as long as they get.
Worktree full() {
    Worktree worktree = sample("tariff-tables");
    worktree.branch = "feature/JIRA-12345-" + std::string(60, 'w') + "-" + std::string(60, 'v');
    worktree.path = FilePath(worktree.path.bytes() + "/" + std::string(200, 'p') + "/end");
    for (int number = 0; number < 30; ++number) {
        worktree.ignoredEntries.push_back({.name = "build-" + std::to_string(number),
                                           .isDirectory = true,
                                           .sizeBytes = 64'000'000,
                                           .classification = IgnoredEntryClass::rebuildable});
        worktree.ignoredEntries.push_back({.name = "key-" + std::to_string(number) + ".pem",
                                           .sizeBytes = 1'704,
                                           .classification = IgnoredEntryClass::sensitive});
    }
    return worktree;
}

CleanupPreflightReport passed(int warnings = 0) {
    CleanupPreflightReport report{.passed = true, .remoteIsWritable = true, .resolvedBaseBranch = "main"};
    for (int number = 0; number < warnings; ++number)
        report.warnings.push_back("Submodule “vendor/charts-" + std::to_string(number) +
                                  "” has changes that are not pushed.");
    return report;
}

// Secrets in the packages of a large project, of which one is larger than what the vault takes.
ReviewLook secretsBelowTheTop(int count) {
    ReviewLook look;
    look.nested.maximumFileBytes = 10'000'000;
    for (int number = 0; number < count; ++number) {
        const std::string path = "packages/tariffs-" + std::to_string(number) + "/config/.env.local";
        look.nested.seen.push_back({.name = path, .relativePath = path, .sizeBytes = 412});
    }
    const std::string large = "infra/certificates/" + std::string(60, 'c') + "/harbour-authority.p12";
    look.nested.seen.push_back({.name = large, .relativePath = large, .sizeBytes = 48'000'000});
    return look;
}

Worktree withManyFiles() {
    Worktree worktree = sample("tariff-tables");
    for (int number = 0; number < 5'000; ++number)
        worktree.status.changedPaths.push_back("src/tariffs/zone-" + std::to_string(number) + "/table.ts");
    for (int number = 0; number < 4; ++number)
        worktree.status.untrackedPaths.push_back("docs/notes-" + std::to_string(number) + ".md");
    worktree.ignoredEntries.push_back({.name = "captures",
                                       .isDirectory = true,
                                       .sizeBytes = 1'240'000'000,
                                       .classification = IgnoredEntryClass::unknown});
    return worktree;
}

CleanupReceipt cleaned() {
    CleanupReceipt receipt;
    receipt.date = sampleNow;
    receipt.repositoryName = "lighthouse";
    receipt.recoveryBranch = "cairnfield/recovery/lighthouse/20270115-080000";
    receipt.preservedCommitSHA = "9d3b62a7f0c14e58b1a07c55d2e94f36a8b0c7e1";
    receipt.pullRequestNumber = 418;
    receipt.recoveryVaultPaths = {FilePath("/vault/.env.local")};
    receipt.removalSucceeded = true;
    receipt.reclaimedBytes = 3'420'000'000;
    receipt.finalStage = CleanupStage::completed;
    receipt.outcome = CleanupOutcome::succeeded;
    return receipt;
}

CleanupReceipt refused() {
    CleanupReceipt receipt = cleaned();
    receipt.recoveryBranch.reset();
    receipt.preservedCommitSHA.reset();
    receipt.pullRequestNumber.reset();
    receipt.recoveryVaultPaths.clear();
    receipt.removalSucceeded = false;
    receipt.reclaimedBytes = 0;
    receipt.outcome = CleanupOutcome::failed;
    receipt.errorSummary =
        "A commit hook stopped the preservation commit. lint-staged: 2 files with problems\n"
        "src/tariffs/table.ts:41 unexpected any\nsrc/tariffs/table.ts:97 unused variable 'zone'";
    return receipt;
}

CleanupReceipt leftBehind() {
    CleanupReceipt receipt = cleaned();
    receipt.pullRequestNumber.reset();
    receipt.recoveryVaultPaths.clear();
    receipt.removalSucceeded = false;
    receipt.reclaimedBytes = 0;
    receipt.outcome = CleanupOutcome::partiallyCompleted;
    receipt.errorSummary =
        "Git refused to remove the worktree at /home/ada/code/lighthouse-worktrees/tariff-tables. fatal: "
        "'tariff-tables' contains modified or untracked files, use --force to delete it";
    return receipt;
}

CleanupReceipt talkative() {
    CleanupReceipt receipt = refused();
    std::string words = "The push was rejected.";
    for (int line = 1; line <= 40; ++line)
        words += "\nremote: policy " + std::to_string(line) + ": <b>no</b> branch may be made on a Friday";
    receipt.errorSummary = words;
    return receipt;
}

Scene scene(std::string name, Worktree worktree, Then then, QSize size = {1080, 720}) {
    const auto set = [worktree = std::move(worktree), then = std::move(then)](Stage& stage) {
        stage.root.setSelection(SidebarSection::worktrees);
        stage.state.watchedFolders.set(sampleFolders());
        stage.state.worktrees.set(sampleWorktrees());
        stage.state.githubStatus.set({.isInstalled = true, .authenticatedHosts = {"git.example.org"}});
        stage.worktrees.flush();
        stage.review.open(worktree);
        then(stage.review);
        stage.worktrees.flush();
    };
    return {.name = "review-" + std::move(name), .set = set, .size = size};
}

Then answering(CleanupPreflightReport report, ReviewLook look = {}) {
    return [report = std::move(report), look = std::move(look)](CleanupReviewViewModel& review) {
        CleanupReviewStaging::answer(review, report, look);
    };
}

Then unfolding(CleanupPreflightReport report) {
    return [report = std::move(report)](CleanupReviewViewModel& review) {
        CleanupReviewStaging::answer(review, report);
        for (QObject* list : review.lists()) qobject_cast<ReviewListModel*>(list)->setUnfolded(true);
    };
}

/// With the vault switched off for what lies below the top.
Then keepingNothingBelowTheTop(CleanupPreflightReport report, ReviewLook look) {
    return [report = std::move(report), look = std::move(look)](CleanupReviewViewModel& review) {
        CleanupReviewStaging::answer(review, report, look);
        review.setIncludeNestedInVault(false);
    };
}

Then runningIn(CleanupStage stage) {
    return [stage](CleanupReviewViewModel& review) { CleanupReviewStaging::run(review, stage); };
}

Then endingWith(std::optional<CleanupReceipt> receipt) {
    return [receipt = std::move(receipt)](CleanupReviewViewModel& review) {
        CleanupReviewStaging::end(review, receipt);
    };
}

}  // namespace

std::vector<Scene> reviewScenes() {
    const Worktree work = sample("tariff-tables");
    std::vector<Scene> all{
        scene("checking", work, [](CleanupReviewViewModel&) {}),
        scene("blocked", work,
              answering({.failures = {"The remote “origin” could not be reached. ssh: connect to host "
                                      "git.example.org port 22: Network is unreachable"}})),
        scene("preserving", work, answering(passed(1))),
        scene("preserving-tall", work, answering(passed(1)), tall),
        scene("preserving-smallest", work, answering(passed(1)), smallest),
        scene("nothing-to-preserve", sample("harbour-map"), answering(passed())),
        scene("full", full(), answering(passed(2)), QSize(1080, 2200)),
        scene("warnings", work, answering(passed(40))),
        scene("nested-secrets", work, answering(passed(), secretsBelowTheTop(2)), taller),
        scene("nested-secrets-many", sample("harbour-map"), answering(passed(), secretsBelowTheTop(240)),
              tall),
        scene("nested-secrets-left", work, keepingNothingBelowTheTop(passed(), secretsBelowTheTop(2)),
              taller),
        scene("nested-secrets-smallest", work, answering(passed(), secretsBelowTheTop(2)), smallest),
        scene("mostly-missing", work, answering(passed(1), {.missing = MissingFiles{418, 430}})),
        scene("files", withManyFiles(), answering(passed())),
        scene("files-unfolded", withManyFiles(), unfolding(passed()), tall),
        scene("running", work, runningIn(CleanupStage::pushing)),
        scene("cleaned", work, endingWith(cleaned())),
        scene("failed", work, endingWith(refused())),
        scene("talkative", work, endingWith(talkative())),
        scene("partially", work, endingWith(leftBehind())),
        scene("never-began", work, endingWith(std::nullopt)),
    };
    all.push_back(scene("signed-out", work, answering(passed()), tall));
    all.back().set = [set = all.back().set](Stage& stage) {
        set(stage);
        stage.state.githubStatus.set({.isInstalled = true});
    };
    return all;
}

}  // namespace cairnfield
