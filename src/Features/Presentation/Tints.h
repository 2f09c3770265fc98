#pragma once
// The colour that each state goes with, as the name of a tint of the window's theme. Pure functions, any
// thread.

#include "Models/CleanupReceipt.h"
#include "Models/Storage.h"
#include "Models/WorktreeSafety.h"

#include <string_view>

namespace cairnfield {

[[nodiscard]] std::string_view tintName(StorageLevel level);
[[nodiscard]] std::string_view tintName(SafetyDisposition disposition);
[[nodiscard]] std::string_view tintName(CleanupOutcome outcome);

}  // namespace cairnfield
