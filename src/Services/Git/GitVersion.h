#pragma once
// Whether a git is new enough. Every question of the catalog begins with a list that older ones do not know
// how to print. Pure functions, any thread.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <string_view>

namespace cairnfield::GitVersion {

/// Why the git at this path cannot be used, in words for a person; absent when it can, and when what it
/// printed about its version is not understood. `answer` is the output of `git --version`.
[[nodiscard]] std::optional<std::string> whyTooOld(std::string_view answer, const FilePath& git);

}  // namespace cairnfield::GitVersion
