#pragma once
// How plain records become JSON and come back: keys are the field names, dates are ISO 8601 in UTC with whole
// seconds, enumerations are their raw values, absent values are left out, paths take the form of
// pathToJSONText. Reading a record throws nlohmann::json::exception when a required key is missing or has
// another type; a store turns that into its default (see Persistence/JSONFileStore.h).

#include "Models/UUID.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <nlohmann/json_fwd.hpp>

#include <string_view>

namespace cairnfield {

using Json = nlohmann::json;

void to_json(Json& json, const UUID& uuid);
void from_json(const Json& json, UUID& uuid);
void to_json(Json& json, const FilePath& path);
void from_json(const Json& json, FilePath& path);

[[nodiscard]] Json jsonFromDate(Date date);
[[nodiscard]] Date dateFromJSON(const Json& json);

/// Text that may hold anything, repaired: writing JSON out fails over malformed UTF-8.
[[nodiscard]] Json jsonFromText(std::string_view text);

/// The same value with its paths as plain text, for output that nobody reads back: what pathToJSONText had
/// written in its own way becomes U+FFFD.
[[nodiscard]] Json printable(Json json);

}  // namespace cairnfield
