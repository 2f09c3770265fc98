#pragma once
// The words of the review's lists: what looks sensitive below the top of the worktree, and each file that the
// review knows of. Pure functions over plain values; texts from outside leave here safe to look at, on one
// line each.

#include "Services/Cleanup/MissingFiles.h"
#include "Services/Cleanup/NestedSensitiveFiles.h"

#include <cstddef>
#include <string>
#include <vector>

namespace cairnfield {

/// So many files are named; of more it is said how many there are.
inline constexpr std::size_t namedNestedFiles = 200;

/// A sentence with the names that it is about. Without a sentence there is nothing to say.
struct NamedFilesText {
    std::string statement;
    std::vector<std::string> lines;

    friend bool operator==(const NamedFilesText&, const NamedFilesText&) = default;
};

/// All that was seen: "2 ignored files in folders look sensitive.", "• src/api/.env · 41 bytes".
[[nodiscard]] NamedFilesText nestedFilesText(const NestedSensitiveFiles& nested);

/// Those that go with the worktree: all of them where the person does not keep them, else those that the
/// vault does not take.
[[nodiscard]] NamedFilesText nestedFilesThatGoText(const NestedSensitiveFiles& nested, bool areKept);

/// For a worktree most of which is missing; empty for every other.
[[nodiscard]] std::string missingFilesText(const MissingFiles& files);

// The heads of the folded lists, and the row of one ignored entry: "captures · 1.2 GB · Unknown".
[[nodiscard]] std::string changedFilesTitle(std::size_t count);
[[nodiscard]] std::string untrackedFilesTitle(std::size_t count);
[[nodiscard]] std::string ignoredEntriesTitle(std::size_t count);
[[nodiscard]] std::string ignoredEntryLine(const IgnoredEntry& entry);

}  // namespace cairnfield
