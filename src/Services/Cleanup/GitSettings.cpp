#include "Services/Cleanup/GitSettings.h"

#include "Shared/Text/Text.h"

namespace cairnfield {

GitSettings GitSettings::parse(std::string_view list) {
    GitSettings settings;
    for (const std::string_view entry : splitDroppingEmpty(list, '\0')) {
        // Section and last part of a key come in lower case, what is between them as it was written.
        const std::size_t lineEnd = entry.find('\n');
        const std::string_view key = entry.substr(0, lineEnd);
        const std::string_view value =
            lineEnd == std::string_view::npos ? std::string_view() : entry.substr(lineEnd + 1);
        const bool isOfARemote = key.starts_with("remote.");
        if (isOfARemote && key.ends_with(".url")) settings.remoteURLs.emplace_back(value);
        if (isOfARemote && key.ends_with(".fetch") && value == "+refs/*:refs/*") settings.isMirror = true;
        if (key == "extensions.objectformat") settings.hasLongObjectNames = value == "sha256";
    }
    return settings;
}

}  // namespace cairnfield
