#pragma once
// The leave to bring a window forward, as the desktop hands it to whoever was started or pressed.
//
// The one of a start goes to the program that runs already, if there is one, and else to Qt, which finds it
// in the environment by itself. The one of a press goes to the program that the press starts, in that
// program's own environment. One for a window that is already open cannot be used: Qt takes it from the
// environment of this process and from nowhere else, and that must not change beside threads. A Wayland
// desktop may then mark the window rather than raise it.

#include "Shared/Environment/Environment.h"

#include <string>

namespace cairnfield {

/// What a start of the program was given; empty for nothing.
[[nodiscard]] std::string activationTokenIn(const Environment& environment);

}  // namespace cairnfield
