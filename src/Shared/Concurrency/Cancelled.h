#pragma once

#include <exception>

namespace cairnfield {

/// Thrown by a wait whose task was cancelled. It is caught at the task's root, by whoever holds the handle;
/// between there and the wait it only passes through. It is not a failure and is shown to nobody.
struct Cancelled final : std::exception {
    [[nodiscard]] const char* what() const noexcept override { return "cancelled"; }
};

}  // namespace cairnfield
