#include "Models/JSONFields.h"

namespace cairnfield::detail {

Json jsonFromTexts(const std::vector<std::string>& texts) {
    Json list = Json::array();
    for (const std::string& text : texts) list.push_back(jsonFromText(text));
    return list;
}

}  // namespace cairnfield::detail
