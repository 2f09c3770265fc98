#pragma once
// Whether looking below a directory could make the system mount something.

#include "Shared/Paths/FilePath.h"

#include <string_view>

namespace cairnfield {

/// Whether the text of a mountinfo file tells of an automount point at or below the directory, given without
/// links.
[[nodiscard]] bool hasAutomountBelow(std::string_view mountinfo, const FilePath& directory);

/// The same for this process and an open directory. False when the system does not say.
[[nodiscard]] bool hasAutomountBelow(int directory);

}  // namespace cairnfield
