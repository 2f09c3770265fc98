#include "Services/Cleanup/StagedPaths.h"
#include "Services/Git/GitPorcelainParser.h"
#include "Services/Git/IgnoredFileClassifier.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Targets.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

namespace {

std::string joined(const std::vector<std::string_view>& pieces) {
    std::string text;
    for (const std::string_view piece : pieces) text.append(piece).append(1, '\0');
    return text;
}

std::string withFinalNul(std::string_view input) {
    std::string text(input);
    if (!text.empty() && !text.ends_with('\0')) text += '\0';
    return text;
}

void checkReasons(const GitWorktreeEntry& entry) {
    promise(!entry.lockReason || (entry.isLocked && !entry.lockReason->empty()), "a reason needs a lock");
    promise(!entry.prunableReason || (entry.isPrunable && !entry.prunableReason->empty()),
            "a reason needs what it explains");
}

void checkCounts(const GitStatusSummary& summary) {
    const std::int64_t changed = std::ssize(summary.changedPaths);
    promise(summary.untrackedCount == std::ssize(summary.untrackedPaths), "untracked paths are counted");
    promise(summary.stagedCount >= 0 && summary.modifiedCount >= 0 && summary.conflictedCount >= 0,
            "counts start at nothing");
    promise(summary.conflictedCount + std::max(summary.stagedCount, summary.modifiedCount) <= changed,
            "a change has a path");
    promise(!summary.isClean() || summary.untrackedPaths.empty(), "what is there is not clean");
}

/// As git would have written it. A path that begins at its record's end is all of the path.
std::string statusOf(const GitStatusSummary& summary) {
    std::string text;
    for (const std::string& path : summary.changedPaths)
        text += "1 M. N... 100644 100644 100644 aaaa bbbb " + path + '\0';
    for (const std::string& path : summary.untrackedPaths) text += "? " + path + '\0';
    for (const std::string& path : summary.ignoredPaths) text += "! " + path + '\0';
    return text;
}

}  // namespace

void fuzzWorktreeList(std::string_view input) {
    const std::vector<std::string_view> pieces = GitPorcelainParser::splitNulTerminated(input);
    promise(joined(pieces) == withFinalNul(input), "splitting loses nothing");

    const std::vector<GitWorktreeEntry> entries = GitPorcelainParser::parseWorktreeList(input);
    promise(entries == GitPorcelainParser::parseWorktreeList(input), "the same list reads the same");
    std::size_t next = 0;
    for (const std::string_view piece : pieces) {
        if (piece != "worktree" && !piece.starts_with("worktree ")) continue;
        promise(next < entries.size(), "every worktree is an entry");
        const std::string_view path = piece.substr(std::min<std::size_t>(piece.size(), 9));
        promise(entries[next++].path.bytes() == path, "paths keep their bytes");
    }
    promise(next == entries.size(), "every entry is a worktree");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        promise(entries[i].isMain == (i == 0), "the first entry alone is the main worktree");
        checkReasons(entries[i]);
    }
}

void fuzzStatus(std::string_view input) {
    const GitStatusSummary summary = GitPorcelainParser::parseStatus(input);
    promise(summary == GitPorcelainParser::parseStatus(input), "the same status reads the same");
    checkCounts(summary);

    GitStatusSummary again = GitPorcelainParser::parseStatus(statusOf(summary));
    promise(again.changedPaths == summary.changedPaths && again.untrackedPaths == summary.untrackedPaths &&
                again.ignoredPaths == summary.ignoredPaths,
            "paths keep their bytes");

    // What stands in front never changes what follows.
    std::string longer = "? before";
    longer += '\0';
    longer += input;
    GitStatusSummary more = GitPorcelainParser::parseStatus(longer);
    promise(!more.untrackedPaths.empty() && more.untrackedPaths.front() == "before", "the first stays first");
    more.untrackedPaths.erase(more.untrackedPaths.begin());
    --more.untrackedCount;
    promise(more == summary, "records stand for themselves");
}

void fuzzSubmodules(std::string_view input) {
    const std::string text = "\n" + std::string(input);
    const bool expected = text.find("\n+") != std::string::npos || text.find("\nU") != std::string::npos;
    promise(GitPorcelainParser::submodulesNeedReview(input) == expected, "a mark begins its line");
}

void fuzzRemoteURL(std::string_view input) {
    const std::string name(input);
    for (const char* prefix : {"refs/heads/", "refs/remotes/"})
        promise(GitPorcelainParser::shortBranchName(prefix + name) == name, "one prefix is taken off");

    const std::optional<std::string> host = GitRemoteURL::host(input);
    promise(host == GitRemoteURL::host(" \t" + name + "\r\n"), "blanks around a URL mean nothing");
    const GitRemote remote{"origin", "", name};
    promise(remote.host() == host, "a remote's host is that of its push URL");
    if (!host) {
        promise(!remote.isGitHub(), "no host is no hosting service");
        return;
    }
    promise(!host->empty(), "a host has a name");
    promise(name.find(*host) != std::string::npos, "a host stands in its URL");
    const bool isPlain = std::ranges::all_of(*host, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '-';
    });
    if (!isPlain) return;
    promise(GitRemoteURL::host("https://someone@" + *host + ":443/a/b.git") == host, "a URL names its host");
    promise(GitRemoteURL::host("git@" + *host + ":a/b.git") == host, "the short form names its host");
}

void fuzzIgnoredPaths(std::string_view input) {
    std::vector<std::string> paths;
    for (const std::string_view piece : GitPorcelainParser::splitNulTerminated(input))
        paths.emplace_back(piece);
    const std::vector<std::string> entries = IgnoredFileClassifier::topLevelEntries(paths);
    promise(std::set<std::string>(entries.begin(), entries.end()).size() == entries.size(),
            "each entry once");
    promise(entries.size() <= paths.size(), "no entry without a path");
    for (const std::string& entry : entries) {
        promise(!entry.empty() && entry.find('/') == std::string::npos, "an entry is one name");
        promise(std::ranges::any_of(
                    paths, [&](const std::string& path) { return path.find(entry) != std::string::npos; }),
                "an entry keeps its bytes");
        const IgnoredEntryClass kind = IgnoredFileClassifier::classify(entry);
        promise(kind == IgnoredFileClassifier::classify(entry), "a name has one class");
        promise(ignoredEntryClassFromRawValue(rawValue(kind)) == kind, "a class has a raw value");
    }
    promise(IgnoredFileClassifier::topLevelEntries(entries) == entries, "entries are their own entries");
}

void fuzzStagedPaths(std::string_view input) {
    std::vector<std::string> paths;
    for (const std::string_view piece : GitPorcelainParser::splitNulTerminated(input))
        paths.emplace_back(piece);
    constexpr std::size_t maximum = 64;
    std::size_t next = 0;
    for (const std::vector<std::string>& batch : StagedPaths::batches(paths, maximum)) {
        promise(!batch.empty(), "no command without a path");
        std::size_t used = 0;
        for (const std::string& argument : batch) {
            promise(next < paths.size(), "no path twice");
            promise(argument == paths[next] || argument == ":(literal)" + paths[next],
                    "paths keep their bytes");
            promise(!argument.starts_with(':') || argument.starts_with(":(literal)"), "no path is a pattern");
            used += argument.size() + 1;
            ++next;
        }
        promise(batch.size() == 1 || used <= maximum, "a command holds what it may");
    }
    promise(next == paths.size(), "no path is left out");
}

}  // namespace cairnfield
