#pragma once
// The commands that work on the model, as coroutines on its thread.

#include "App/AppModel.h"
#include "Models/UUID.h"
#include "driver/JsonLines.h"

#include <vector>

namespace cairnfield {

/// Watches the folders too; a line for each that could not be added.
Task<> addRoots(AppModel& model, JsonLines& lines, std::vector<FilePath> roots);

Task<> addFolders(AppModel& model, JsonLines& lines, std::vector<FilePath> roots);
Task<> listFolders(AppModel& model, JsonLines& lines);
Task<> removeFolder(AppModel& model, JsonLines& lines, UUID id);
Task<> scanDirectory(AppModel& model, JsonLines& lines, FilePath path, bool fresh);

struct InspectWords {
    std::vector<FilePath> roots;
    std::vector<FilePath> pins;
    bool sizes = false;
    bool pullRequests = false;
};
/// "seconds" is what the refresh took, with the sizing and the lookup that were asked for, without adding the
/// roots.
Task<> inspectWorktrees(AppModel& model, JsonLines& lines, InspectWords words);

Task<> showIntegrations(AppModel& model, JsonLines& lines);

}  // namespace cairnfield
