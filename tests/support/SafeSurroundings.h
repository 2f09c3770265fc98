#pragma once
// Surroundings without anybody's settings for git, for as long as a test needs them. Before threads start.

#include "support/ScopedEnvironment.h"

#include <list>

namespace cairnfield {

[[nodiscard]] inline std::list<ScopedEnvironment> surroundingsAtTheStart() {
    std::list<ScopedEnvironment> scoped;
    scoped.emplace_back("GIT_CONFIG_GLOBAL", "/dev/null");
    scoped.emplace_back("GIT_CONFIG_NOSYSTEM", "1");
    return scoped;
}

}  // namespace cairnfield
