#pragma once
// The address of a file for other programs. Made from the path's bytes, so that every name survives, valid
// text or not.

#include "Shared/Paths/FilePath.h"

#include <string>

namespace cairnfield {

/// "file:///home/a%20b". The path is absolute.
[[nodiscard]] std::string fileURI(const FilePath& path);

}  // namespace cairnfield
