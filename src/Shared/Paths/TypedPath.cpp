#include "Shared/Paths/TypedPath.h"

#include "Shared/Text/Text.h"

#include <charconv>

namespace cairnfield {

std::optional<FilePath> pathFromTyped(std::string_view typed, const FilePath& home) {
    const std::string_view path = trimmed(typed);
    if (path == "~") return home.standardized();
    if (path.starts_with("~/")) return home.appending(path.substr(2)).standardized();
    const FilePath result{std::string(path)};
    if (!result.isAbsolute()) return std::nullopt;
    return result.standardized();
}

FilePath pathFromEncoded(std::string_view encodedPath) {
    std::string bytes;
    bytes.reserve(encodedPath.size());
    for (std::size_t position = 0; position < encodedPath.size(); ++position) {
        unsigned char byte = static_cast<unsigned char>(encodedPath[position]);
        if (byte == '%' && position + 2 < encodedPath.size()) {
            const char* const digits = encodedPath.data() + position + 1;
            const auto [end, failure] = std::from_chars(digits, digits + 2, byte, 16);
            if (failure == std::errc{} && end == digits + 2) {
                position += 2;
            } else {
                byte = '%';
            }
        }
        bytes.push_back(static_cast<char>(byte));
    }
    return FilePath(std::move(bytes));
}

}  // namespace cairnfield
