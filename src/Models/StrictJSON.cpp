#include "Models/StrictJSON.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <string>

namespace cairnfield::detail {

using Json = nlohmann::json;

void throwUnexpected(const Json& json, std::string_view expected) {
    throw Json::type_error::create(302, "expected " + std::string(expected) + ", found " + json.type_name(),
                                   &json);
}

std::int64_t integerFromJSON(const Json& json) {
    if (json.is_number_unsigned()) {
        const auto number = json.get<std::uint64_t>();
        if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return static_cast<std::int64_t>(number);
    } else if (json.is_number_integer()) {
        return json.get<std::int64_t>();
    } else if (json.is_number_float()) {
        const auto number = json.get<double>();
        constexpr double limit = 9'223'372'036'854'775'808.0;  // 2 to the 63rd
        if (std::trunc(number) == number && number >= -limit && number < limit)
            return static_cast<std::int64_t>(number);
    }
    throwUnexpected(json, "a whole number of 64 bits");
}

}  // namespace cairnfield::detail
