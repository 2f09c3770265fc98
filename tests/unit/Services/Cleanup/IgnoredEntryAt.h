#pragma once
// A file at the top of a worktree that git ignores.

#include "Models/Worktree.h"

#include <cstdint>
#include <string>

namespace cairnfield {

inline IgnoredEntry ignored(const std::string& name, std::int64_t size, IgnoredEntryClass classification) {
    IgnoredEntry entry;
    entry.name = name;
    entry.relativePath = name;
    entry.sizeBytes = size;
    entry.classification = classification;
    return entry;
}

}  // namespace cairnfield
