#include "Platform/Linux/FileUserDefaults.h"

#include "Shared/Text/Base64.h"
#include "Shared/Text/Text.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace cairnfield {

namespace {

using Json = nlohmann::json;

constexpr const char* dataKey = "data";

/// What is kept without being understood is written again, each level indented further: a small file could
/// ask for any number of bytes, and for any depth of calls.
bool isShallow(int depth, Json::parse_event_t, const Json&) {
    constexpr int deepest = 32;
    if (depth > deepest) throw std::runtime_error("expected settings, found values too deep in others");
    return true;
}

Json parsedObject(const std::string& bytes) {
    Json parsed = Json::parse(bytes, isShallow);
    if (!parsed.is_object()) throw std::runtime_error("expected an object of settings");
    return parsed;
}

struct ToJSON {
    Json operator()(bool value) const { return value; }
    Json operator()(std::int64_t value) const { return value; }
    Json operator()(double value) const { return value; }
    Json operator()(const std::string& value) const { return pathToJSONText(FilePath(value)); }
    Json operator()(const DefaultsData& value) const { return {{dataKey, base64Encoded(value.bytes)}}; }
};

std::optional<DefaultsValue> integerOf(const Json& json) {
    if (json.is_number_unsigned() &&
        json.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return std::nullopt;
    return json.get<std::int64_t>();
}

std::optional<DefaultsValue> dataOf(const Json& json) {
    const auto place = json.find(dataKey);
    if (json.size() != 1 || place == json.end() || !place->is_string()) return std::nullopt;
    std::optional<std::string> bytes = base64Decoded(place->get_ref<const std::string&>());
    if (!bytes) return std::nullopt;
    return DefaultsData{*std::move(bytes)};
}

std::optional<DefaultsValue> valueOf(const Json& json) {
    switch (json.type()) {
        case Json::value_t::boolean:
            return json.get<bool>();
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned:
            return integerOf(json);
        case Json::value_t::number_float:
            return json.get<double>();
        case Json::value_t::string:
            return pathFromJSONText(json.get_ref<const std::string&>()).bytes();
        case Json::value_t::object:
            return dataOf(json);
        default:
            return std::nullopt;
    }
}

}  // namespace

FileUserDefaults::FileUserDefaults(FilePath file, Executor& background, ContinuousClock& clock,
                                   std::shared_ptr<StoredFileNotices> notices)
    : file_(std::move(file), std::move(notices)), writer_(file_, background, clock) {
    file_.read([this](const std::string& bytes) { values_ = parsedObject(bytes); });
}

std::optional<DefaultsValue> FileUserDefaults::value(std::string_view key) const {
    const auto place = values_.find(std::string(key));
    if (place == values_.end()) return std::nullopt;
    return valueOf(*place);
}

void FileUserDefaults::set(std::string_view key, DefaultsValue value) {
    values_[std::string(key)] = std::visit(ToJSON{}, value);
    writer_.write(text());
}

void FileUserDefaults::setWhileTyping(std::string_view key, DefaultsValue value) {
    values_[std::string(key)] = std::visit(ToJSON{}, value);
    writer_.writeAfterPause(text());
}

void FileUserDefaults::remove(std::string_view key) {
    if (values_.erase(std::string(key)) > 0) writer_.write(text());
}

std::string FileUserDefaults::text() const {
    return values_.dump(2) + "\n";
}

}  // namespace cairnfield
