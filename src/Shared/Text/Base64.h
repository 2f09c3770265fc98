#pragma once
// Bytes as text and back, in the usual alphabet with padding. Pure functions, any thread.

#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

[[nodiscard]] std::string base64Encoded(std::string_view bytes);

/// Absent unless the whole text is padded base64, without blanks or line breaks.
[[nodiscard]] std::optional<std::string> base64Decoded(std::string_view text);

}  // namespace cairnfield
