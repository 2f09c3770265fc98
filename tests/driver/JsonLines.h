#pragma once
// What the driver tells: one JSON object a line on standard output, flushed at once. Every text is valid
// UTF-8: paths stand as plain text, and bytes that are no text are repaired. Lines may come from any thread
// and stay whole.

#include "Models/JSON.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

class JsonLines {
public:
    /// One line with this "event" and the fields of an object.
    void print(std::string_view event, Json fields);

    /// An error line for the exception that is being handled, when it is one that the program words for
    /// people: CairnfieldError or std::system_error. Anything else is thrown on.
    void printCurrentError();

    /// An error line for what the model published about a failure: `field` is the name of the published
    /// value.
    void printPublishedError(std::string_view field, const std::string& description);
    void printIfFailed(std::string_view field, const std::optional<std::string>& failure);
};

}  // namespace cairnfield
