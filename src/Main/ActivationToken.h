#pragma once
// The leave to bring a window forward, as the desktop hands it to whoever was started or pressed. Main thread
// only.

#include <string>

namespace cairnfield {

/// What this start of the program was given; empty for nothing. Before the application object is made, which
/// takes part of it away.
[[nodiscard]] std::string activationTokenOfStart();

/// For the next window that is brought forward. Does nothing where windows come forward without.
void useActivationToken(const std::string& token);

[[nodiscard]] bool isOnWayland();

}  // namespace cairnfield
