#pragma once
// Puts the reviewed paths into the index with `git add`, and gets past two states in which git refuses paths
// whose changes it can preserve: a deletion that is staged already, and a tracked file in a folder that is
// ignored. Never undoes what is staged. Belongs to one run of the coordinator and runs on its caller's
// executor. Throws CairnfieldError::CommandFailed with git's words for every other refusal.

#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Git/GitCommandRunner.h"
#include "Shared/Concurrency/Executor.h"
#include "Shared/Errors/CairnfieldError.h"

#include <unordered_set>

namespace cairnfield {

class Staging {
public:
    /// `blocking` and `plan` outlive the staging.
    Staging(GitCommandRunner git, Executor& blocking, const CleanupPlan& plan)
        : git_(std::move(git)), blocking_(blocking), plan_(plan) {}

    /// Gives the paths that the commit has to cover: all of them, but for those that the person took out of
    /// the index and that git ignored at the review already. The deletion of those is staged; the files go by
    /// the rules for ignored ones.
    [[nodiscard]] Task<std::vector<std::string>> stage(std::vector<std::string> paths);

private:
    using Paths = std::vector<std::string>;
    using PathSet = std::unordered_set<std::string>;

    /// Gives the paths among them that the commit has to cover.
    [[nodiscard]] Task<Paths> stageTogether(Paths paths);
    /// Gives the paths that are left to the rules for ignored files.
    [[nodiscard]] Task<PathSet> stageApart(Paths paths, CairnfieldError refusal);
    /// What is on disk or in the index.
    [[nodiscard]] Task<Paths> withoutVanished(Paths paths);
    [[nodiscard]] Task<> run(GitArguments command, Paths paths);
    [[nodiscard]] Task<std::optional<CairnfieldError>> refusalOf(GitArguments command, Paths paths);
    [[nodiscard]] Task<std::optional<PathSet>> listed(GitArguments question, Paths paths);

    GitCommandRunner git_;
    Executor& blocking_;
    const CleanupPlan& plan_;
};

}  // namespace cairnfield
