#pragma once
// The environments that children get, built afresh from the application's own at every call. Any thread.

#include "Platform/ChildProcess.h"

namespace cairnfield::CommandEnvironment {

/// The application's environment with everything removed that redirects git, no prompts, no pagers, no
/// colours, and texts that programs can be parsed by.
[[nodiscard]] Environment noninteractive();

/// The same, and a command that needs credentials fails at once.
[[nodiscard]] Environment network();

}  // namespace cairnfield::CommandEnvironment
