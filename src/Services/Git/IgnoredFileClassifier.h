#pragma once
// What ignored files directly under a worktree's root would cost if they went with it: rebuildable output
// nothing, secrets and local configuration cannot be got back, the rest is unknown. Pure functions.

#include "Models/Worktree.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield::IgnoredFileClassifier {

/// The first component of each path, once, in the order of first appearance.
[[nodiscard]] std::vector<std::string> topLevelEntries(const std::vector<std::string>& paths);

/// Looking like a secret wins over looking rebuildable.
[[nodiscard]] IgnoredEntryClass classify(std::string_view name);

/// How rebuildable output comes back, to stand after "Rebuilt by".
[[nodiscard]] std::optional<std::string_view> rebuildHint(std::string_view name);

}  // namespace cairnfield::IgnoredFileClassifier
