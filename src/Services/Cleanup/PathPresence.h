#pragma once
// What is at a path, links not followed. One tiny blocking call, from any thread.

#include "Shared/Paths/FilePath.h"

#include <sys/stat.h>

#include <cerrno>

namespace cairnfield {

enum class PathPresence {
    absent,
    directory,
    other,  ///< what cannot be asked for is among these
};

[[nodiscard]] inline PathPresence presenceOf(const FilePath& path) {
    struct stat status{};
    if (lstat(path.c_str(), &status) == 0)
        return S_ISDIR(status.st_mode) ? PathPresence::directory : PathPresence::other;
    return errno == ENOENT || errno == ENOTDIR ? PathPresence::absent : PathPresence::other;
}

}  // namespace cairnfield
