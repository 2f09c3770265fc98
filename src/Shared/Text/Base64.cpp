#include "Shared/Text/Base64.h"

#include <cstdint>

namespace cairnfield {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string base64Encoded(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::string_view group = bytes.substr(at, 3);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i)
            bits = bits << 8U | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= group.size() ? alphabet[bits >> (18U - 6U * i) & 63U] : '=';
    }
    return text;
}

std::optional<std::string> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    text.remove_suffix(padding);

    std::string bytes;
    bytes.reserve(text.size() * 3 / 4);
    std::uint32_t bits = 0;
    unsigned held = 0;  // bits that are not written yet
    for (const char c : text) {
        const std::size_t value = alphabet.find(c);
        if (value == std::string_view::npos) return std::nullopt;
        bits = bits << 6U | static_cast<std::uint32_t>(value);
        held += 6;
        if (held < 8) continue;
        held -= 8;
        bytes += static_cast<char>(bits >> held & 0xFFU);
    }
    return bytes;
}

}  // namespace cairnfield
