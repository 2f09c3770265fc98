#pragma once
// The environments that commands get, built afresh at every call from the one that the application was
// started with. Any thread.

#include "Shared/Environment/Environment.h"

namespace cairnfield::CommandEnvironment {

/// The application's environment as SafeEnvironment.h makes it, with everything removed that redirects git,
/// no prompts, no pagers, no colours, and texts that programs can be parsed by.
[[nodiscard]] Environment noninteractive();

/// The same, and a command that needs credentials fails at once.
[[nodiscard]] Environment network();

}  // namespace cairnfield::CommandEnvironment
