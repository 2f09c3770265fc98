#include "Models/JSON.h"

#include "Models/StrictJSON.h"
#include "Shared/Text/Text.h"

#include <nlohmann/json.hpp>

namespace cairnfield {

void to_json(Json& json, const UUID& uuid) {
    json = uuid.text();
}

void from_json(const Json& json, UUID& uuid) {
    const std::optional<UUID> read = UUID::parse(json.get_ref<const std::string&>());
    if (!read) detail::throwUnexpected(json, "a UUID");
    uuid = *read;
}

void to_json(Json& json, const FilePath& path) {
    json = pathToJSONText(path);
}

void from_json(const Json& json, FilePath& path) {
    path = pathFromJSONText(json.get_ref<const std::string&>());
}

Json jsonFromDate(Date date) {
    return iso8601(date);
}

Date dateFromJSON(const Json& json) {
    const std::optional<Date> date = dateFromISO8601(json.get_ref<const std::string&>());
    if (!date) detail::throwUnexpected(json, "an ISO 8601 date");
    return *date;
}

Json jsonFromText(std::string_view text) {
    return repairedUTF8(text);
}

Json printable(Json json) {
    if (json.is_string()) {
        auto& text = json.get_ref<std::string&>();
        if (text.find('\0') != std::string::npos) text = repairedUTF8(pathFromJSONText(text).bytes());
    }
    if (json.is_structured())
        for (Json& element : json) element = printable(std::move(element));
    return json;
}

}  // namespace cairnfield
