#pragma once
// Paths as arguments of `git add`. Pure functions, any thread.

#include <string>
#include <vector>

namespace cairnfield::StagedPaths {

/// What one command's paths may take together, in bytes: far below what any system allows for arguments and
/// environment.
inline constexpr std::size_t maximumBytes = 524'288;

/// The path as it is, unless git would read it as a pattern: then in a form that stands for itself alone. A
/// pattern could stage what the person left out.
[[nodiscard]] std::string argumentFor(const std::string& path);

/// The arguments for all paths, in order, in as few commands as hold them. None for no paths.
[[nodiscard]] std::vector<std::vector<std::string>> batches(const std::vector<std::string>& paths,
                                                            std::size_t maximum = maximumBytes);

}  // namespace cairnfield::StagedPaths
