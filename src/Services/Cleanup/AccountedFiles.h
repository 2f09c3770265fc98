#pragma once
// The one rule by which no file leaves unseen: every file of a worktree is tracked, is one that git itself
// refuses to remove, was ignored when the person reviewed the worktree, or is rebuildable output. Whatever
// keeps git from reporting a file, such as a setting made for another disk or a pattern added since, the file
// is then refused by name. A file is a regular file or a link; what has no content is not asked about.
//
// For the last look alone. One thread; keeps references, so that all it was made from has to outlive it.
// Asks git nothing. Throws std::system_error when two names cannot be compared on disk.

#include "Models/Worktree.h"
#include "Services/Cleanup/GitIndexFile.h"
#include "Services/Cleanup/SensitiveNames.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace cairnfield {

/// What a review showed beside what an inspection holds, and what git says since.
struct FilesSeen {
    /// The paths that git reports as untracked by now: it removes no worktree that holds one.
    std::vector<std::string> untracked;
    /// Below the top, the ignored files that looked sensitive at the review. Absent before it has looked for
    /// them: then none counts as having appeared in an ignored directory.
    std::optional<std::vector<IgnoredEntry>> sensitive;
};

class AccountedFiles {
public:
    /// What is known of all that lies in one directory.
    struct Place {
        /// It was part of the review as one ignored directory, with whatever comes to it later but for what
        /// looks sensitive. Only a directory that git itself listed counts, not the first component of a
        /// path, by which the review's list of ignored entries goes.
        bool isCovered = false;
        SensitiveTrail trail;
    };

    AccountedFiles(const Worktree& reviewed, const std::vector<GitIndexEntry>& index, const FilesSeen& seen);

    /// Of a directory, from that of the one above it. A path goes by its bytes, relative to the worktree.
    [[nodiscard]] Place placeOf(const std::string& directory, std::string_view name,
                                const Place& above) const;

    /// Why that file must not go; absent when it is accounted for.
    [[nodiscard]] std::optional<std::string> refusalOf(const std::string& path, std::string_view name,
                                                       const Place& place);

private:
    using Paths = std::unordered_set<std::string_view>;
    /// git folds the case of ASCII letters alone.
    using Names = std::unordered_multimap<std::string, std::string_view>;

    [[nodiscard]] bool appearedSensitive(const std::string& path, std::string_view name,
                                         const Place& place) const;
    [[nodiscard]] bool holdsTrackedFiles(std::string_view directory) const;
    /// Of the tracked paths. Made when the first file asks for it, which is rare.
    [[nodiscard]] const Names& namesByFoldedCase();

    const Worktree& reviewed_;
    Paths tracked_;
    Paths untracked_;
    Paths reviewedUntracked_;
    Paths ignored_;  ///< at the review; directories end in "/"
    std::optional<Paths> seenSensitive_;
    std::optional<Names> namesByFoldedCase_;
};

}  // namespace cairnfield
