#pragma once

#include "Shared/Errors/CairnfieldError.h"

#include <gtest/gtest.h>

namespace cairnfield {

/// What the action throws. Fails the test when it throws nothing.
template <class Action>
[[nodiscard]] CairnfieldError failureOf(Action action) {
    try {
        action();
    } catch (const CairnfieldError& error) {
        return error;
    }
    ADD_FAILURE() << "did not fail";
    return CairnfieldError(CairnfieldError::Offline{});
}

}  // namespace cairnfield
