#pragma once
// The last look with all that it takes: files on a thread that may block, and git, read-only, for what files
// do not tell. An ordinary worktree costs no command. Runs on its caller's executor; a plain value, used from
// any task. Does not throw: what cannot be asked is a refusal.

#include "Services/Cleanup/LastLook.h"

namespace cairnfield {

class RemovalLook {
public:
    /// `blocking` and `volumes` outlive every look. `ours` is our own data folder, which must never go with a
    /// worktree.
    RemovalLook(GitCommandRunner git, Executor& blocking, const VolumeInformation& volumes, FilePath ours)
        : git_(std::move(git)), blocking_(&blocking), volumes_(&volumes), ours_(std::move(ours)) {}

    /// What it has against the removal of a worktree of which nothing was preserved yet: the reasons that
    /// will still stand when it has been. `fresh` is its state at this moment. With `preserves`, HEAD may be
    /// anywhere, since what it is at will be preserved.
    [[nodiscard]] Task<std::optional<RemovalRefusal>> beforehand(Worktree fresh, bool preserves) const;

    /// What it has against the removal that follows at once. The question need not say what must stay.
    [[nodiscard]] Task<std::optional<RemovalRefusal>> atTheEnd(LastLookQuestion question) const;

private:
    Task<std::optional<RemovalRefusal>> look(LastLookQuestion question) const;

    GitCommandRunner git_;
    Executor* blocking_;
    const VolumeInformation* volumes_;
    FilePath ours_;
};

}  // namespace cairnfield
