#include "ui/screenshots/SampleState.h"

#include <array>
#include <random>
#include <string>

namespace cairnfield {

namespace {

using std::chrono::hours;
using std::chrono::minutes;

constexpr std::int64_t megabyte = 1'000'000;

Worktree linked(const std::string& repository, const std::string& branch, WorktreeSafety safety,
                std::int64_t size, minutes age) {
    Worktree worktree;
    worktree.repositoryRoot = FilePath("/home/ada/code/" + repository);
    worktree.path = FilePath("/home/ada/code/" + repository + "-worktrees/" + branch);
    worktree.gitCommonDir = worktree.repositoryRoot.appending(".git");
    worktree.repositoryName = repository;
    worktree.branch = branch;
    worktree.headSHA = "4f1c2a9be07d35e86a1f0c92d4b7e3568a0d1c7f";
    worktree.remotes = {
        {"origin", "git@git.example.org:ada/" + repository, "git@git.example.org:ada/" + repository}};
    worktree.tracking.defaultBranch = "main";
    worktree.sizeBytes = size;
    worktree.safety = safety;
    worktree.lastActivity = sampleNow - age;
    worktree.source = WorktreeSource::generic;
    return worktree;
}

Worktree mainOf(const std::string& repository, std::int64_t size, minutes age) {
    Worktree worktree = linked(repository, "main", WorktreeSafety::mainWorktree, size, age);
    worktree.path = worktree.repositoryRoot;
    worktree.isMain = true;
    worktree.tracking.upstreamBranch = "origin/main";
    worktree.tracking.headIsRemotelyPreserved = true;
    return worktree;
}

Worktree withPullRequest(Worktree worktree, std::int64_t number, PullRequestState state) {
    worktree.pullRequest = PullRequestInfo{.number = number, .state = state};
    worktree.tracking.upstreamBranch = "origin/" + *worktree.branch;
    worktree.tracking.headIsRemotelyPreserved = true;
    return worktree;
}

Worktree unfinished() {
    Worktree worktree = linked("lighthouse", "tariff-tables", WorktreeSafety::dirtyTrackedChanges,
                               3'420 * megabyte, minutes(12));
    worktree.source = WorktreeSource::claude;
    worktree.status = {.stagedCount = 2, .modifiedCount = 7, .untrackedCount = 3};
    worktree.tracking.upstreamBranch = "origin/tariff-tables";
    worktree.tracking.ahead = 3;
    worktree.ignoredEntries = {
        {.name = "node_modules",
         .isDirectory = true,
         .sizeBytes = 1'240 * megabyte,
         .classification = IgnoredEntryClass::rebuildable},
        {.name = "target",
         .isDirectory = true,
         .sizeBytes = 980 * megabyte,
         .classification = IgnoredEntryClass::rebuildable},
        {.name = "recordings", .isDirectory = true, .sizeBytes = 310 * megabyte},
        {.name = ".env.local", .sizeBytes = 2'048, .classification = IgnoredEntryClass::sensitive}};
    return worktree;
}

}  // namespace

std::vector<Worktree> sampleWorktrees() {
    std::vector<Worktree> all{
        mainOf("lighthouse", 5'900 * megabyte, minutes(3)),
        unfinished(),
        withPullRequest(
            linked("lighthouse", "harbour-map", WorktreeSafety::openPullRequest, 2'810 * megabyte, hours(5)),
            412, PullRequestState::open),
        linked("lighthouse", "night-mode", WorktreeSafety::cleanMerged, 2'640 * megabyte, hours(400)),
        linked("lighthouse", "fog-signal", WorktreeSafety::activeOrLocked, 890 * megabyte, minutes(1)),
        mainOf("pantry", 1'150 * megabyte, hours(30)),
        linked("pantry", "recipes-import", WorktreeSafety::committedButUnpushed, 640 * megabyte, hours(52)),
        linked("pantry", "shelf-life", WorktreeSafety::sensitiveIgnoredFiles, 410 * megabyte, hours(200)),
        linked("pantry", "try-sqlite", WorktreeSafety::cleanDisposable, 388 * megabyte, hours(900)),
        linked("pantry", "units", WorktreeSafety::unresolvedConflicts, 120 * megabyte, hours(70)),
        mainOf("weather-station", 240 * megabyte, hours(2'000)),
        linked("weather-station", "old-sensor", WorktreeSafety::inaccessible, 0, hours(3'000)),
    };
    all[4].isActive = true;
    all[4].activityReason = "Files changed within the last 15 minutes.";
    all[8].isPinned = true;
    all[9].status = {.conflictedCount = 2};
    all[9].operationInProgress = GitOperationInProgress::merge;
    all[10].remotes.clear();
    all[11].inspectionError = "The worktree's folder no longer exists.";
    all[11].lastActivity.reset();
    return all;
}

std::vector<Worktree> manyWorktrees(std::size_t count) {
    constexpr std::array words{"harbour", "lantern", "meadow", "copper", "signal", "orchard",
                               "granite", "ferry",   "willow", "beacon", "cinder", "plover"};
    std::mt19937 random(5000);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    const auto word = [&] { return std::string(words[static_cast<std::size_t>(upTo(words.size() - 1))]); };
    std::vector<Worktree> all;
    all.reserve(count);
    std::string repository;
    while (all.size() < count) {
        if (all.size() % 20 == 0) {
            repository = word() + "-" + word() + "-" + std::to_string(all.size() / 20);
            all.push_back(mainOf(repository, upTo(6'000) * megabyte, hours(upTo(500))));
            continue;
        }
        all.push_back(
            linked(repository, "feature/" + word() + "-" + word() + "-" + std::to_string(all.size()),
                   static_cast<WorktreeSafety>(2 + upTo(15)), upTo(3'000) * megabyte, hours(upTo(2'000))));
    }
    return all;
}

std::vector<Worktree> oddWorktrees() {
    const std::string longWord(40, 'w');
    std::vector<Worktree> all{
        mainOf("a-repository-whose-name-goes-on-and-on-until-nobody-reads-it-to-the-end", 98'760 * megabyte,
               minutes(1)),
        withPullRequest(linked("a-repository-whose-name-goes-on-and-on-until-nobody-reads-it-to-the-end",
                               "feature/JIRA-12345-" + longWord + "-" + longWord,
                               WorktreeSafety::openPullRequest, 123'456 * megabyte, hours(9'000)),
                        123'456, PullRequestState::merged),
        linked("größe-日本語", "zweig/für-ähnliches-長いブランチ名", WorktreeSafety::untrackedChanges, 1,
               hours(1)),
        linked("spoof", "<b>bold</b>\nsecond\u202Egnp.exe\xff", WorktreeSafety::manualReview, 2 * megabyte,
               hours(2)),
    };
    all[1].source = WorktreeSource::claude;
    all[1].isPinned = true;
    all[1].path =
        FilePath(all[1].path.bytes() + "/" + longWord + "/" + longWord + "/" + longWord + "/the-end");
    all[1].isActive = true;
    all[1].activityReason = "A process has its working directory in " + all[1].path.bytes() + ".";
    all[1].ignoredEntries = {
        {.name = longWord + longWord + longWord, .isDirectory = true, .sizeBytes = 98'765 * megabyte}};
    return all;
}

std::vector<WatchedFolder> sampleFolders() {
    WatchedFolder code = WatchedFolder::make(FilePath("/home/ada/code"));
    code.lastScanAt = sampleNow - minutes(4);
    code.lastKnownSizeBytes = 41'300 * megabyte;
    code.previousSizeBytes = 39'900 * megabyte;
    WatchedFolder work = WatchedFolder::make(FilePath("/srv/shared/projects/2026"));
    work.lastScanAt = sampleNow - hours(3);
    work.lastKnownSizeBytes = work.previousSizeBytes = 182'000 * megabyte;
    work.warningBytes = 150'000 * megabyte;
    work.lastScanError = "3 item(s) could not be read.";
    WatchedFolder huge = WatchedFolder::make(FilePath("/media/ada/archive"));
    huge.lastScanAt = sampleNow - hours(30);
    huge.lastKnownSizeBytes = 912'000 * megabyte;
    huge.previousSizeBytes = 950'500 * megabyte;
    huge.criticalBytes = 900'000 * megabyte;
    WatchedFolder fresh = WatchedFolder::make(FilePath("/home/ada/experiments"));
    WatchedFolder gone =
        WatchedFolder::make(FilePath("/home/ada/a-folder-with-a-very-long-name/that-lies-deep/"
                                     "in-another-folder-with-a-very-long-name/and-was-taken-away"));
    gone.lastScanError =
        "The folder /home/ada/a-folder-with-a-very-long-name/that-lies-deep no longer exists.";
    return {code, work, huge, fresh, gone};
}

}  // namespace cairnfield
