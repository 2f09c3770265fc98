#pragma once
// Reading a small file as a whole, and making a folder for our own. Blocking, any thread.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>

namespace cairnfield {

/// The bytes of a regular file, or absent when there is none. Throws std::system_error for everything else:
/// what may not be read, and what is a folder, a pipe or a device.
[[nodiscard]] std::optional<std::string> readFile(const FilePath& file);

/// Creates the folder and its missing parents, readable by the user alone and on disk before the call
/// returns; one that is there is success and stays as it is. Throws std::system_error.
void ensureDirectory(const FilePath& directory);

}  // namespace cairnfield
