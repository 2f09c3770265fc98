#pragma once
// The commands that watch: one reading of the volume, and the real monitoring for a while.

#include "driver/JsonLines.h"
#include "driver/Program.h"

#include <chrono>
#include <vector>

namespace cairnfield {

Task<> showStorage(AppModel& model, JsonLines& lines);

struct MonitorWords {
    std::vector<FilePath> roots;
    std::chrono::seconds duration{};
};
/// Prints a "changed" line for each change of a published field. Meanwhile each line "respond ACTION [--path
/// PATH]" of standard input is the answer to a notification, and gives a result of its own; a line that says
/// anything else is an error line. The last line is the result of the monitoring.
Task<> monitorFolders(Program& program, AppModel& model, JsonLines& lines, MonitorWords words);

}  // namespace cairnfield
