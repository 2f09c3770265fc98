#pragma once
// One cleanup of one worktree by the real inspector, plan, preflight and coordinator, with real children, the
// real stores and the real vault. What it sees and what comes of it is printed. Runs on the calling thread
// until the end.

#include "driver/JsonLines.h"
#include "fault/Checkpoints.h"
#include "fault/RunRequest.h"

namespace cairnfield {

void cleanOnce(const RunRequest& request, Checkpoints& checkpoints, JsonLines& lines);

}  // namespace cairnfield
