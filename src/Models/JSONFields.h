#pragma once
// The fields of a record, read and written one by one: for the sources of Models and of stores with records
// of their own. Reading is strict, since the library alone would take 1.5 for an integer and wrap one that is
// too large. Every function that reads throws nlohmann::json::exception.

#include "Models/JSON.h"
#include "Models/StrictJSON.h"

#include <nlohmann/json.hpp>

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield::detail {

/// Reads one value: a record by its from_json, a date, an integer and a path in the forms that JSON.h tells.
template <class T>
[[nodiscard]] T valueFromJSON(const Json& json) {
    if constexpr (std::same_as<T, Date>) {
        return dateFromJSON(json);
    } else if constexpr (std::same_as<T, std::int64_t>) {
        return integerFromJSON(json);
    } else {
        return json.get<T>();
    }
}

/// Text is repaired, so that writing the JSON out can never fail over its bytes.
template <class T>
[[nodiscard]] Json jsonFromValue(const T& value) {
    if constexpr (std::same_as<T, Date>) {
        return jsonFromDate(value);
    } else if constexpr (std::same_as<T, std::string>) {
        return jsonFromText(value);
    } else {
        return Json(value);
    }
}

template <class T>
void readRequired(const Json& json, const char* key, T& field) {
    field = valueFromJSON<T>(json.at(key));
}

/// A missing key and a null both read as absent.
template <class T>
void readOptional(const Json& json, const char* key, std::optional<T>& field) {
    const auto place = json.find(key);
    field.reset();
    if (place != json.end() && !place->is_null()) field = valueFromJSON<T>(*place);
}

/// By the function that turns a raw value into a case.
template <class T>
void readRawValue(const Json& json, const char* key, T& field,
                  std::optional<T> (*fromRawValue)(std::string_view)) {
    const Json& value = json.at(key);
    const std::optional<T> read = fromRawValue(value.get_ref<const std::string&>());
    if (!read) throwUnexpected(value, key);
    field = *read;
}

/// An absent value leaves no key.
template <class T>
void writeOptional(Json& json, const char* key, const std::optional<T>& field) {
    if (field) json[key] = jsonFromValue(*field);
}

[[nodiscard]] Json jsonFromTexts(const std::vector<std::string>& texts);

}  // namespace cairnfield::detail
