#include "Shared/Paths/FilePath.h"

#include "Shared/Text/Text.h"

#include <optional>

namespace cairnfield {

namespace {

constexpr std::string_view hexadecimal = "0123456789abcdef";
constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// The byte that two digits stand for. Only bytes from 0x80 up are ever written this way.
std::optional<char> escapedByte(std::string_view digits) {
    if (digits.size() < 2) return std::nullopt;
    const std::size_t high = hexadecimal.find(digits[0]);
    const std::size_t low = hexadecimal.find(digits[1]);
    if (high == std::string_view::npos || low == std::string_view::npos || high < 8) return std::nullopt;
    return static_cast<char>(high << 4U | low);
}

std::string_view withoutTrailingSlashes(std::string_view bytes) {
    while (bytes.size() > 1 && bytes.ends_with('/')) bytes.remove_suffix(1);
    return bytes;
}

}  // namespace

FilePath FilePath::standardized() const {
    std::vector<std::string_view> kept;
    for (const std::string_view component : splitDroppingEmpty(bytes_, '/')) {
        if (component == ".") continue;
        if (component != "..") {
            kept.push_back(component);
        } else if (!kept.empty() && kept.back() != "..") {
            kept.pop_back();
        } else if (!isAbsolute()) {
            kept.push_back(component);
        }
    }
    std::string result;
    result.reserve(bytes_.size());
    for (const std::string_view component : kept) {
        if (isAbsolute() || !result.empty()) result += '/';
        result += component;
    }
    if (result.empty() && isAbsolute()) result = "/";
    return FilePath(std::move(result));
}

std::string FilePath::lastComponent() const {
    const std::string_view bytes = withoutTrailingSlashes(bytes_);
    if (bytes == "/") return "/";
    return std::string(bytes.substr(bytes.rfind('/') + 1));
}

FilePath FilePath::parent() const {
    const std::string_view bytes = withoutTrailingSlashes(bytes_);
    const std::size_t slash = bytes.rfind('/');
    if (slash == std::string_view::npos) return FilePath();
    return FilePath(std::string(withoutTrailingSlashes(bytes.substr(0, slash + 1))));
}

FilePath FilePath::appending(std::string_view relative) const {
    while (relative.starts_with('/')) relative.remove_prefix(1);
    if (bytes_.empty()) return FilePath(std::string(relative));
    std::string result(withoutTrailingSlashes(bytes_));
    if (result != "/") result += '/';
    result += relative;
    return FilePath(std::move(result));
}

std::vector<std::string> FilePath::components() const {
    const std::vector<std::string_view> pieces = splitDroppingEmpty(bytes_, '/');
    return {pieces.begin(), pieces.end()};
}

std::string FilePath::display() const {
    return visibleText(bytes_);
}

std::string pathToJSONText(const FilePath& path) {
    std::string text;
    for (std::string_view rest = path.bytes(); !rest.empty();) {
        const std::string_view valid = rest.substr(0, validUTF8Length(rest));
        text += valid;
        rest.remove_prefix(valid.size());
        if (rest.empty()) break;
        const auto byte = static_cast<unsigned char>(rest.front());
        text += '\0';
        text += hexadecimal[byte >> 4U];
        text += hexadecimal[byte & 0x0FU];
        rest.remove_prefix(1);
    }
    return text;
}

FilePath pathFromJSONText(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    while (true) {
        const std::string_view plain = text.substr(0, text.find('\0'));
        bytes += plain;
        text.remove_prefix(plain.size());
        if (text.empty()) return FilePath(std::move(bytes));
        text.remove_prefix(1);
        if (const std::optional<char> byte = escapedByte(text)) {
            bytes += *byte;
            text.remove_prefix(2);
        } else {
            bytes += replacement;
        }
    }
}

}  // namespace cairnfield
