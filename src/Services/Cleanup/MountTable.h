#pragma once
// Where file systems are mounted, as this process sees them. Any thread.

#include "Shared/Paths/FilePath.h"

#include <string_view>
#include <vector>

namespace cairnfield {

/// The mount points in the kernel's table; a line that is not understood is passed over. Pure.
[[nodiscard]] std::vector<FilePath> mountPoints(std::string_view table);

/// Those of this moment. Blocks. Throws std::system_error when the table cannot be read.
[[nodiscard]] std::vector<FilePath> presentMountPoints();

/// Whether a path is a folder or lies in it, by text alone: both are free of links.
[[nodiscard]] bool liesIn(const FilePath& path, const FilePath& folder);

}  // namespace cairnfield
