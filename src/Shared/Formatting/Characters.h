#pragma once
// A text as the characters that a person sees, where an accent belongs to its letter. Pure, any thread.

#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// Each of them as valid UTF-8, in order. Malformed sequences are repaired first.
[[nodiscard]] std::vector<std::string> userPerceivedCharacters(std::string_view text);

}  // namespace cairnfield
