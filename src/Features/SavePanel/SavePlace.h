#pragma once
// Whether a file can be saved at a place, as far as that can be known before it is tried. Looks at the file
// system and changes nothing; any thread.

#include "Shared/Paths/FilePath.h"

#include <string>

namespace cairnfield {

/// Why not, in words for the person; empty when nothing speaks against it. The folder is absolute, and
/// neither it nor those above need exist. Nothing is ever replaced, so that a name that is taken is a reason.
[[nodiscard]] std::string whyNotSavedAt(const FilePath& folder, const std::string& name);

}  // namespace cairnfield
