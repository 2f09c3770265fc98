#pragma once

#include "Shared/Paths/FilePath.h"

namespace cairnfield {

/// Whether a path is this folder or something in it, by whole names. By text alone: both are standardized,
/// and where links matter, resolved. Nothing lies in the empty path.
[[nodiscard]] bool isAtOrBelow(const FilePath& path, const FilePath& folder);

}  // namespace cairnfield
