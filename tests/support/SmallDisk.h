#pragma once
// A disk that a test can fill to its last byte.

#include "Shared/Paths/FilePath.h"

#include <functional>
#include <optional>
#include <string>

namespace cairnfield {

/// Runs `body` in a child process that has a file system of so many bytes of its own, and gives the text that
/// it returned. What it throws comes back as "threw: " and the words of the exception. Absent where a test
/// may mount nothing. Not while other threads run.
[[nodiscard]] std::optional<std::string> onSmallDisk(
    std::size_t bytes, const std::function<std::string(const FilePath& disk)>& body);

/// Takes all that is free, and names the file that took it.
FilePath fillDisk(const FilePath& disk);

}  // namespace cairnfield
