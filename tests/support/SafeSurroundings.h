#pragma once
// This process's environment as the program makes it at its start, for as long as a test needs it: nobody's
// settings for git, and the program's own. Before threads start.

#include "Services/Process/SafeEnvironment.h"
#include "support/ScopedEnvironment.h"

#include <list>

namespace cairnfield {

[[nodiscard]] inline std::list<ScopedEnvironment> surroundingsAtTheStart() {
    std::list<ScopedEnvironment> scoped;
    scoped.emplace_back("GIT_CONFIG_GLOBAL", "/dev/null");
    scoped.emplace_back("GIT_CONFIG_NOSYSTEM", "1");
    Environment searched;
    for (const char* name : {"PATH", "LD_LIBRARY_PATH"}) {
        if (const char* value = std::getenv(name)) searched.emplace(name, value);
    }
    const Environment safe = safeForGit(searched);
    for (const auto& [name, value] : safe) scoped.emplace_back(name, value);
    for (const auto& [name, value] : searched) {
        if (!safe.contains(name)) scoped.emplace_back(name, std::nullopt);
    }
    return scoped;
}

}  // namespace cairnfield
