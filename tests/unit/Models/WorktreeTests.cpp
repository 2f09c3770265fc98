#include "Models/Worktree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::Field;
using namespace std::chrono_literals;

struct VerdictRow {
    WorktreeSafety safety;
    std::string rawValue;
    SafetyDisposition disposition;
    std::string explanation;
};

TEST(WorktreeSafety, TellsWhatEachVerdictMeans) {
    using enum WorktreeSafety;
    using enum SafetyDisposition;
    const std::vector<VerdictRow> rows{
        {mainWorktree, "mainWorktree", cannotClean,
         "This is the repository's main checkout. Cairnfield never removes it."},
        {bareRepository, "bareRepository", cannotClean,
         "This is a bare repository. It holds Git data, not a working copy."},
        {activeOrLocked, "activeOrLocked", inUse, "Something is using this worktree, or Git has it locked."},
        {cleanDisposable, "cleanDisposable", safeToClean,
         "No changes, no unique commits. Removing it loses nothing."},
        {cleanMerged, "cleanMerged", safeToClean,
         "Its commits are already reachable from the remote default branch."},
        {remotelyPreserved, "remotelyPreserved", preservedRemotely,
         "Every commit here exists on the remote."},
        {openPullRequest, "openPullRequest", preservedRemotely,
         "The branch is pushed and has a pull request."},
        {committedButUnpushed, "committedButUnpushed", preserveFirst,
         "It has commits that exist only on this Mac."},
        {dirtyTrackedChanges, "dirtyTrackedChanges", preserveFirst,
         "Tracked files were edited but not committed."},
        {untrackedChanges, "untrackedChanges", preserveFirst,
         "It contains new files that Git is not tracking."},
        {detachedWithUniqueCommits, "detachedWithUniqueCommits", preserveFirst,
         "HEAD is detached and holds commits no branch points to."},
        {sensitiveIgnoredFiles, "sensitiveIgnoredFiles", needsReview,
         "It holds ignored files that look like secrets or local configuration."},
        {mergeOrRebaseInProgress, "mergeOrRebaseInProgress", needsReview,
         "A merge, rebase, or similar operation is unfinished."},
        {unresolvedConflicts, "unresolvedConflicts", needsReview, "Merge conflicts are still unresolved."},
        {submoduleRequiresReview, "submoduleRequiresReview", needsReview,
         "A submodule has its own uncommitted state."},
        {unsupportedRemote, "unsupportedRemote", needsReview,
         "Cairnfield cannot verify preservation against this remote."},
        {inaccessible, "inaccessible", cannotClean, "Cairnfield could not read this worktree."},
        {manualReview, "manualReview", needsReview,
         "Cairnfield is not certain this is safe, so it will not act automatically."}};
    EXPECT_EQ(rows.size(), 18U);
    for (const VerdictRow& row : rows) {
        EXPECT_EQ(rawValue(row.safety), row.rawValue);
        EXPECT_EQ(disposition(row.safety), row.disposition) << row.rawValue;
        EXPECT_EQ(explanation(row.safety), row.explanation);
    }
}

TEST(SafetyDisposition, HasItsWordsAndItsPlace) {
    struct Row {
        std::string rawValue, title, symbolName;
        int sortRank;
    };
    const std::vector<Row> rows{{"safeToClean", "Safe to clean", "checkmark.circle", 0},
                                {"preservedRemotely", "Preserved remotely", "cloud", 1},
                                {"preserveFirst", "Preserve first", "arrow.up.doc", 2},
                                {"inUse", "In use", "person.fill.checkmark", 4},
                                {"needsReview", "Needs review", "questionmark.circle", 3},
                                {"cannotClean", "Cannot clean", "lock", 5}};
    ASSERT_EQ(rows.size(), allDispositions.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rawValue(allDispositions.at(i)), rows[i].rawValue);
        EXPECT_EQ(title(allDispositions.at(i)), rows[i].title);
        EXPECT_EQ(symbolName(allDispositions.at(i)), rows[i].symbolName);
        EXPECT_EQ(sortRank(allDispositions.at(i)), rows[i].sortRank);
    }
}

TEST(IgnoredEntryClass, HasItsWordsAndIsReadBack) {
    using enum IgnoredEntryClass;
    EXPECT_EQ(title(rebuildable), "Rebuildable");
    EXPECT_EQ(title(sensitive), "Sensitive");
    EXPECT_EQ(title(unknown), "Unknown");
    for (const IgnoredEntryClass value : {rebuildable, sensitive, unknown})
        EXPECT_EQ(ignoredEntryClassFromRawValue(rawValue(value)), value);
    EXPECT_EQ(ignoredEntryClassFromRawValue("secret"), std::nullopt);
}

TEST(WorktreeSource, HasItsWords) {
    EXPECT_EQ(rawValue(WorktreeSource::claude), "claude");
    EXPECT_EQ(rawValue(WorktreeSource::generic), "generic");
    EXPECT_EQ(rawValue(WorktreeSource::unknown), "unknown");
    EXPECT_EQ(title(WorktreeSource::claude), "Claude");
    EXPECT_EQ(title(WorktreeSource::generic), "Generic");
    EXPECT_EQ(title(WorktreeSource::unknown), "Unknown");
}

TEST(Worktree, ShowsItsBranchOrWhatStandsInForIt) {
    Worktree worktree;
    EXPECT_EQ(worktree.displayBranch(), "unknown");
    worktree.isBare = true;
    EXPECT_EQ(worktree.displayBranch(), "bare");
    worktree.isDetached = true;
    EXPECT_EQ(worktree.displayBranch(), "bare") << "without a commit";
    worktree.headSHA = "0123456789abcdef";
    EXPECT_EQ(worktree.displayBranch(), "detached at 0123456");
    worktree.headSHA = "0123";
    EXPECT_EQ(worktree.displayBranch(), "detached at 0123");
    worktree.branch = "";
    EXPECT_EQ(worktree.displayBranch(), "detached at 0123");
    worktree.branch = "feature/x";
    EXPECT_EQ(worktree.displayBranch(), "feature/x");
}

TEST(Worktree, IsUnknownWhenDetachedWithoutACommit) {
    Worktree worktree;
    worktree.isDetached = true;
    EXPECT_EQ(worktree.displayBranch(), "unknown");
}

TEST(Worktree, IsIdentifiedByItsStandardizedPath) {
    Worktree worktree;
    worktree.path = FilePath("/a/./b/");
    EXPECT_EQ(worktree.id(), FilePath("/a/b"));
}

TEST(Worktree, FiltersItsIgnoredEntriesInTheirOrder) {
    Worktree worktree;
    worktree.sizeBytes = 7;
    for (const auto& [name, value] :
         {std::pair("node_modules", IgnoredEntryClass::rebuildable),
          std::pair(".env", IgnoredEntryClass::sensitive), std::pair("notes", IgnoredEntryClass::unknown),
          std::pair("build", IgnoredEntryClass::rebuildable)}) {
        IgnoredEntry entry;
        entry.name = entry.relativePath = name;
        entry.classification = value;
        worktree.ignoredEntries.push_back(entry);
    }
    EXPECT_THAT(worktree.rebuildableIgnoredEntries(),
                ElementsAre(Field(&IgnoredEntry::name, "node_modules"), Field(&IgnoredEntry::name, "build")));
    EXPECT_THAT(worktree.sensitiveIgnoredEntries(), ElementsAre(Field(&IgnoredEntry::name, ".env")));
    EXPECT_THAT(worktree.unknownIgnoredEntries(), ElementsAre(Field(&IgnoredEntry::name, "notes")));
    EXPECT_EQ(worktree.reclaimableBytes(), 7);
}

TEST(IgnoredEntry, GoesThroughJSONByteForByte) {
    const IgnoredEntry entry{"caf\xE9", "caf\xE9", true, 4096, Date(1s), IgnoredEntryClass::sensitive};
    const Json json = Json::parse(Json(entry).dump());
    EXPECT_EQ(json.get<IgnoredEntry>(), entry);
    EXPECT_EQ(json.dump(),
              R"({"classification":"sensitive","isDirectory":true,"modifiedAt":"1970-01-01T00:00:01Z",)"
              R"("name":"caf\u0000e9","relativePath":"caf\u0000e9","sizeBytes":4096})");
}

TEST(IgnoredEntry, RefusesAnUnknownClass) {
    Json json = IgnoredEntry();
    EXPECT_FALSE(json.contains("modifiedAt"));
    json["classification"] = "secret";
    EXPECT_THROW((void)json.get<IgnoredEntry>(), Json::exception);
}

std::set<std::string> keysOf(const Json& json) {
    std::set<std::string> keys;
    for (const auto& [key, value] : json.items()) keys.insert(key);
    return keys;
}

TEST(Worktree, IsWrittenWithItsFieldNames) {
    const std::set<std::string> always{"path",       "repositoryRoot", "gitCommonDir",    "repositoryName",
                                       "isMain",     "isBare",         "isLocked",        "isPrunable",
                                       "isDetached", "status",         "submodulesDirty", "ignoredEntries",
                                       "remotes",    "tracking",       "sizeBytes",       "sizeIsEstimated",
                                       "source",     "isPinned",       "safety",          "isActive"};
    EXPECT_EQ(keysOf(Worktree()), always);

    Worktree worktree;
    worktree.lockReason = worktree.prunableReason = worktree.branch = worktree.headSHA = "x";
    worktree.activityReason = worktree.inspectionError = "x";
    worktree.operationInProgress = GitOperationInProgress::cherryPick;
    worktree.pullRequest = PullRequestInfo();
    worktree.lastActivity = Date(1s);
    std::set<std::string> all = always;
    for (const char* key : {"lockReason", "prunableReason", "branch", "headSHA", "activityReason",
                            "inspectionError", "operationInProgress", "pullRequest", "lastActivity"})
        all.insert(key);
    const Json json = worktree;
    EXPECT_EQ(keysOf(json), all);
    EXPECT_EQ(json["operationInProgress"], "cherry-pick");
    EXPECT_EQ(json["safety"], "manualReview");
    EXPECT_EQ(json["source"], "unknown");
    EXPECT_EQ(json["lastActivity"], "1970-01-01T00:00:01Z");
}

TEST(Worktree, CanBeWrittenWhateverItHolds) {
    Worktree worktree;
    worktree.path = worktree.repositoryRoot = worktree.gitCommonDir = FilePath("/\xFF");
    worktree.repositoryName = "\xFF";
    worktree.lockReason = worktree.prunableReason = worktree.branch = worktree.headSHA = "\xFF";
    worktree.activityReason = worktree.inspectionError = "\xFF";
    worktree.remotes = {{"\xFF", "\xFF", "\xFF"}};
    EXPECT_NO_THROW((void)Json(worktree).dump());
    EXPECT_EQ(printable(worktree)["path"], "/\uFFFD");
}

}  // namespace
}  // namespace cairnfield
