#pragma once
// Reading JSON more strictly than the library alone would. For the sources of Models and of stores with
// records of their own. Every function here throws nlohmann::json::exception.

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string_view>

namespace cairnfield::detail {

/// A value of another type than the field's, or of a type that fits with a content that does not.
[[noreturn]] void throwUnexpected(const nlohmann::json& json, std::string_view expected);

/// Whole numbers, in whatever notation, that fit 64 bits with a sign.
[[nodiscard]] std::int64_t integerFromJSON(const nlohmann::json& json);

}  // namespace cairnfield::detail
