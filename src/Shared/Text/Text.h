#pragma once
// Bytes from outside that must become text: repaired, trimmed, or made safe to look at. Pure functions, any
// thread, no failure. Nothing here knows a locale; that is Shared/Formatting.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// True when the bytes are well-formed UTF-8.
[[nodiscard]] bool isValidUTF8(std::string_view bytes);

/// Length in bytes of the longest beginning that is well-formed UTF-8.
[[nodiscard]] std::size_t validUTF8Length(std::string_view bytes);

/// Each maximal malformed sequence becomes one U+FFFD; valid text comes back as it was.
[[nodiscard]] std::string repairedUTF8(std::string_view bytes);

/// Without leading and trailing white space and newlines, Unicode's among them. Expects valid UTF-8.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// What a person may look at: repaired, and every control character, line or paragraph separator and
/// direction-changing character replaced by a visible sign (U+2400 and following for the ASCII controls,
/// U+FFFD for the rest). One line.
[[nodiscard]] std::string visibleText(std::string_view bytes);

/// The same line by line, for messages of several lines: newlines stay, a carriage return before one and
/// empty lines at either end go.
[[nodiscard]] std::string visibleLines(std::string_view bytes);

/// Pieces between single separators. Empty pieces are dropped, as the name says.
[[nodiscard]] std::vector<std::string_view> splitDroppingEmpty(std::string_view text, char separator);

/// ASCII letters in lower case, every other byte as it is: for names that programs compare.
[[nodiscard]] std::string lowercasedASCII(std::string_view text);

}  // namespace cairnfield
