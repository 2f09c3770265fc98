#include "Platform/Linux/Desktop/FileURI.h"

#include <string_view>

namespace cairnfield {

std::string fileURI(const FilePath& path) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char character : path.bytes()) {
        if (plain.find(character) != std::string_view::npos) {
            uri += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        uri += '%';
        uri += digits[byte >> 4U];
        uri += digits[byte & 0xFU];
    }
    return uri;
}

}  // namespace cairnfield
