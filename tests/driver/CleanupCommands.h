#pragma once
// The commands of the cleanup, its records and the vault, as coroutines on the model's thread.

#include "App/AppModel.h"
#include "Models/UUID.h"
#include "driver/JsonLines.h"
#include "driver/ProgressLines.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// Which worktree. A path that no list holds is told by WrongWords, but while git is unusable: then no list
/// holds any, and the model is asked what it says to that.
struct WorktreeWords {
    FilePath worktree;
    std::vector<FilePath> roots;
};
Task<> preflightWorktree(AppModel& model, JsonLines& lines, WorktreeWords words);

/// What is changed on the review sheet before it starts.
struct CleanWords {
    WorktreeWords which;
    bool noUntracked = false;
    bool noVault = false;        ///< nothing at all
    bool noNestedVault = false;  ///< nothing from below the top of the worktree
    bool pullRequest = false;    ///< else as the plan proposes
    std::optional<std::string> message;
    std::optional<CleanupStage> pause;
};
Task<> cleanWorktree(AppModel& model, JsonLines& lines, CleanWords words, ProgressLines& progress);

Task<> listReceipts(AppModel& model, JsonLines& lines);
Task<> listVault(AppModel& model, JsonLines& lines);
/// An identifier that no entry has is told by WrongWords.
Task<> restoreFromVault(AppModel& model, JsonLines& lines, UUID id, FilePath destination);
Task<> removeFromVault(AppModel& model, JsonLines& lines, UUID id);

}  // namespace cairnfield
