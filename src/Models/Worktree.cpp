#include "Models/Worktree.h"

#include "Models/JSONFields.h"

#include <algorithm>
#include <iterator>

namespace cairnfield {

namespace {

std::vector<IgnoredEntry> entriesOf(const std::vector<IgnoredEntry>& entries,
                                    IgnoredEntryClass classification) {
    std::vector<IgnoredEntry> filtered;
    std::ranges::copy_if(entries, std::back_inserter(filtered),
                         [&](const IgnoredEntry& entry) { return entry.classification == classification; });
    return filtered;
}

}  // namespace

std::string_view rawValue(IgnoredEntryClass value) {
    switch (value) {
        case IgnoredEntryClass::rebuildable:
            return "rebuildable";
        case IgnoredEntryClass::sensitive:
            return "sensitive";
        case IgnoredEntryClass::unknown:
            return "unknown";
    }
    return {};
}

std::string_view title(IgnoredEntryClass value) {
    switch (value) {
        case IgnoredEntryClass::rebuildable:
            return "Rebuildable";
        case IgnoredEntryClass::sensitive:
            return "Sensitive";
        case IgnoredEntryClass::unknown:
            return "Unknown";
    }
    return {};
}

std::optional<IgnoredEntryClass> ignoredEntryClassFromRawValue(std::string_view text) {
    using enum IgnoredEntryClass;
    for (const IgnoredEntryClass value : {rebuildable, sensitive, unknown})
        if (rawValue(value) == text) return value;
    return std::nullopt;
}

std::string_view rawValue(WorktreeSource source) {
    switch (source) {
        case WorktreeSource::claude:
            return "claude";
        case WorktreeSource::generic:
            return "generic";
        case WorktreeSource::unknown:
            return "unknown";
    }
    return {};
}

std::string_view title(WorktreeSource source) {
    switch (source) {
        case WorktreeSource::claude:
            return "Claude";
        case WorktreeSource::generic:
            return "Generic";
        case WorktreeSource::unknown:
            return "Unknown";
    }
    return {};
}

std::string Worktree::displayBranch() const {
    if (branch && !branch->empty()) return *branch;
    if (isDetached && headSHA) return "detached at " + headSHA->substr(0, 7);
    return isBare ? "bare" : "unknown";
}

std::vector<IgnoredEntry> Worktree::sensitiveIgnoredEntries() const {
    return entriesOf(ignoredEntries, IgnoredEntryClass::sensitive);
}

std::vector<IgnoredEntry> Worktree::rebuildableIgnoredEntries() const {
    return entriesOf(ignoredEntries, IgnoredEntryClass::rebuildable);
}

std::vector<IgnoredEntry> Worktree::unknownIgnoredEntries() const {
    return entriesOf(ignoredEntries, IgnoredEntryClass::unknown);
}

// The names are read back to find the files, so they take the form of paths.
void to_json(Json& json, const IgnoredEntry& entry) {
    json = {{"name", pathToJSONText(FilePath(entry.name))},
            {"relativePath", pathToJSONText(FilePath(entry.relativePath))},
            {"isDirectory", entry.isDirectory},
            {"sizeBytes", entry.sizeBytes},
            {"classification", rawValue(entry.classification)}};
    detail::writeOptional(json, "modifiedAt", entry.modifiedAt);
}

void from_json(const Json& json, IgnoredEntry& entry) {
    entry.name = json.at("name").get<FilePath>().bytes();
    entry.relativePath = json.at("relativePath").get<FilePath>().bytes();
    detail::readRequired(json, "isDirectory", entry.isDirectory);
    detail::readRequired(json, "sizeBytes", entry.sizeBytes);
    detail::readOptional(json, "modifiedAt", entry.modifiedAt);
    detail::readRawValue(json, "classification", entry.classification, ignoredEntryClassFromRawValue);
}

void to_json(Json& json, const Worktree& worktree) {
    json = {{"path", worktree.path},
            {"repositoryRoot", worktree.repositoryRoot},
            {"gitCommonDir", worktree.gitCommonDir},
            {"repositoryName", jsonFromText(worktree.repositoryName)},
            {"isMain", worktree.isMain},
            {"isBare", worktree.isBare},
            {"isLocked", worktree.isLocked},
            {"isPrunable", worktree.isPrunable},
            {"isDetached", worktree.isDetached},
            {"status", worktree.status},
            {"submodulesDirty", worktree.submodulesDirty},
            {"ignoredEntries", worktree.ignoredEntries},
            {"remotes", worktree.remotes},
            {"tracking", worktree.tracking},
            {"sizeBytes", worktree.sizeBytes},
            {"sizeIsEstimated", worktree.sizeIsEstimated},
            {"source", rawValue(worktree.source)},
            {"isPinned", worktree.isPinned},
            {"safety", rawValue(worktree.safety)},
            {"isActive", worktree.isActive}};
    detail::writeOptional(json, "lockReason", worktree.lockReason);
    detail::writeOptional(json, "prunableReason", worktree.prunableReason);
    detail::writeOptional(json, "branch", worktree.branch);
    detail::writeOptional(json, "headSHA", worktree.headSHA);
    detail::writeOptional(json, "pullRequest", worktree.pullRequest);
    detail::writeOptional(json, "lastActivity", worktree.lastActivity);
    detail::writeOptional(json, "activityReason", worktree.activityReason);
    detail::writeOptional(json, "inspectionError", worktree.inspectionError);
    if (worktree.operationInProgress) json["operationInProgress"] = rawValue(*worktree.operationInProgress);
}

}  // namespace cairnfield
