#pragma once
// What a draft pull request says of the work that it keeps. Pure functions, any thread.

#include "Services/Cleanup/CleanupPlan.h"

namespace cairnfield::PullRequestText {

[[nodiscard]] std::string title(const CleanupPlan& plan);
/// Without a newline at the end. `now` is worded in the person's locale.
[[nodiscard]] std::string body(const CleanupPlan& plan, const std::string& base,
                               const std::optional<std::string>& preservedSHA, Date now);

}  // namespace cairnfield::PullRequestText
