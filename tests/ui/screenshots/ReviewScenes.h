#pragma once
// The review sheet in each of its phases.

#include "ui/screenshots/Scenes.h"

#include <vector>

namespace cairnfield {

[[nodiscard]] std::vector<Scene> reviewScenes();

}  // namespace cairnfield
