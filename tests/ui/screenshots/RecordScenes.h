#pragma once
// The pictures of what was done before: the past cleanups and the files that were kept.

#include "ui/screenshots/Scenes.h"

#include <vector>

namespace cairnfield {

[[nodiscard]] std::vector<Scene> recordScenes();

}  // namespace cairnfield
