#pragma once
// What a place that a person typed or picked means as a path. Pure functions, any thread.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string_view>

namespace cairnfield {

/// A typed path: white space around it dropped, "~" at its start standing for the home. Absent unless it is
/// then absolute.
[[nodiscard]] std::optional<FilePath> pathFromTyped(std::string_view typed, const FilePath& home);

/// The path of a file address, byte for byte: what is percent-encoded in it is decoded, valid UTF-8 or not.
/// `encodedPath` is the address's path in its fully encoded form.
[[nodiscard]] FilePath pathFromEncoded(std::string_view encodedPath);

}  // namespace cairnfield
