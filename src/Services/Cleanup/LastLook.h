#pragma once
// The last look before `git worktree remove`, at what neither git's status nor its own refusals cover. Reads
// the index, HEAD, the mount table and the tree directly: starts no process, follows no link out of the
// worktree and writes nothing. Can only refuse; what cannot be looked at is a refusal too. It does not repeat
// what git refuses by itself (changed, staged and untracked files, a lock, populated submodules). The few
// things that files do not tell it leaves open, see GitAnswers; RemovalLook asks them and looks again.
//
// Blocking, any thread: every entry of the tree is visited once. Between the look and the removal there is
// still a moment; this makes it short, not absent.

#include "Models/RecoveryVaultEntry.h"
#include "Models/Worktree.h"
#include "Platform/Volume.h"
#include "Services/Cleanup/AccountedFiles.h"
#include "Services/Cleanup/GitAnswers.h"
#include "Services/Cleanup/HeadLook.h"
#include "Services/Cleanup/RemovalRefusal.h"

#include <optional>
#include <vector>

namespace cairnfield {

struct LastLookQuestion {
    Worktree reviewed;
    ExpectedHead head;
    std::vector<RecoveryVaultEntry> archived;  ///< copies made for this cleanup
    std::vector<FilePath> mustStay;            ///< of ours: the folder of the vault and the stores
    FilesSeen seen;
};

/// Why the worktree must not be removed now; absent when nothing speaks against it, provided that no question
/// to git is left open.
[[nodiscard]] std::optional<RemovalRefusal> lookBeforeRemoval(const LastLookQuestion& question,
                                                              const VolumeInformation& volumes,
                                                              GitAnswers& git);

}  // namespace cairnfield
