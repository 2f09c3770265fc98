#pragma once
// Code that must meet a permission error, which the superuser never sees.

#include <functional>
#include <string>

namespace cairnfield {

/// Runs `body` in a child process as a user without rights and gives the text that it returned. What it
/// throws comes back as "threw: " and the words of the exception. Not while other threads run; the
/// directories that it needs must be open to all.
[[nodiscard]] std::string asUnprivilegedUser(const std::function<std::string()>& body);

}  // namespace cairnfield
