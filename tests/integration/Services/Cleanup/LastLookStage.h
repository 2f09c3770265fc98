#pragma once
// The stage of the cleanups' tests, for the last look alone.

#include "Services/Git/GitPorcelainParser.h"
#include "integration/Services/Cleanup/CleanupStage.h"

#include <filesystem>

namespace cairnfield {

class LastLook : public Cleanup {
protected:
    /// The refusal's own words, without those of an error; empty when there is none.
    std::string look(const Worktree& reviewed, const std::vector<FilePath>& ours = {},
                     std::optional<std::vector<IgnoredEntry>> sensitive = std::nullopt) {
        const RemovalLook removalLook(git, services.pool, mounts,
                                      ours.empty() ? support.directory() : ours.front());
        FilesSeen seen{untrackedIn(reviewed), std::move(sensitive)};
        const std::optional<RemovalRefusal> refusal = waitFor(
            services.pool,
            removalLook.atTheEnd({reviewed, ExpectedHead::reviewed(reviewed), {}, {}, std::move(seen)}));
        return refusal ? refusal->words : std::string();
    }
    std::string look() { return look(review()); }

    /// What git reports by now; nothing where it cannot be asked. Leaves the index as it is.
    static std::vector<std::string> untrackedIn(const Worktree& worktree) {
        const GitRepository present = GitRepository::at(worktree.path);
        if (!std::filesystem::exists(worktree.path.bytes())) return {};
        if (!present.tryGit({"rev-parse", "--git-dir"})) return {};
        const std::string list = present.git({"ls-files", "--others", "--exclude-standard", "-z"});
        const std::vector<std::string_view> paths = GitPorcelainParser::splitNulTerminated(list);
        return {paths.begin(), paths.end()};
    }

    /// What the last look is for: git itself sees nothing wrong.
    bool gitWouldRemove() const { return project.tryGit({"worktree", "remove", feature.path().bytes()}); }
};

}  // namespace cairnfield
