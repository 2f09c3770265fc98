#pragma once
// The kernel's table of mounts, in the text form of a mountinfo file. Pure functions.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// Blanks, tabs, newlines and backslashes stand in the table as a backslash and three octal digits.
[[nodiscard]] std::string unescapedMountField(std::string_view field);

/// Where something is mounted, in the table's order; a line that is not understood is passed over.
[[nodiscard]] std::vector<FilePath> mountPointsIn(std::string_view mountinfo);

/// What is mounted at exactly this directory: a device, or whatever else the file system calls its source.
/// The topmost one where several are mounted over each other.
[[nodiscard]] std::optional<FilePath> sourceOfMount(std::string_view mountinfo, const FilePath& mountPoint);

}  // namespace cairnfield
