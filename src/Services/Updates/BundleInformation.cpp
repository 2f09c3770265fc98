#include "Services/Updates/BundleInformation.h"

namespace cairnfield {

BundleInformation BundleInformation::ofThisProgram() {
    return BundleInformation({{"CFBundleShortVersionString", std::string(CAIRNFIELD_VERSION)},
                              {"CFBundleVersion", std::string(CAIRNFIELD_VERSION)}});
}

std::optional<std::string> BundleInformation::text(std::string_view key) const {
    const auto place = values_.find(key);
    if (place == values_.end()) return std::nullopt;
    const std::string* text = std::get_if<std::string>(&place->second);
    if (!text) return std::nullopt;
    return *text;
}

}  // namespace cairnfield
