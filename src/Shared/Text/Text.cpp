#include "Shared/Text/Text.h"

#include <algorithm>

namespace cairnfield {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// One step through bytes that should be UTF-8.
struct Step {
    std::size_t length = 1;  ///< of the character, or of the maximal malformed sequence
    bool isValid = false;
    char32_t character = 0;
};

/// How many bytes follow a leading byte, and within which bounds the first of them lies.
struct Lead {
    std::size_t following = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

/// The bounds keep out overlong forms, surrogates and everything above U+10FFFF.
Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {1};
    if (byte == 0xE0) return {2, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {2};
    if (byte == 0xF0) return {3, 0x90, 0xBF};
    if (byte == 0xF4) return {3, 0x80, 0x8F};
    if (byte >= 0xF1 && byte <= 0xF3) return {3};
    return {0};
}

/// `bytes` is not empty.
Step firstStep(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes[0]);
    if (first < 0x80) return {1, true, first};
    Lead lead = leadOf(first);
    if (lead.following == 0) return {};
    auto character = static_cast<char32_t>(first & (0x3FU >> lead.following));
    for (std::size_t i = 1; i <= lead.following; ++i) {
        if (i == bytes.size()) return {i};
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < lead.low || byte > lead.high) return {i};
        lead.low = 0x80;
        lead.high = 0xBF;
        character = character << 6U | (byte & 0x3FU);
    }
    return {lead.following + 1, true, character};
}

bool isIn(char32_t character, char32_t first, char32_t last) {
    return character >= first && character <= last;
}

bool isWhiteSpace(char32_t c) {
    return isIn(c, 0x09, 0x0D) || c == ' ' || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           isIn(c, 0x2000, 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

bool isSeparatorOrDirection(char32_t c) {
    return isIn(c, 0x80, 0x9F) || c == 0x061C || c == 0x200E || c == 0x200F || isIn(c, 0x2028, 0x202E) ||
           isIn(c, 0x2066, 0x2069);
}

/// U+2400 to U+2421, the pictures of the ASCII controls.
std::string pictureOf(char32_t control) {
    const unsigned offset = control == 0x7F ? 0x21U : static_cast<unsigned>(control);
    return {'\xE2', '\x90', static_cast<char>(0x80U + offset)};
}

}  // namespace

std::size_t validUTF8Length(std::string_view bytes) {
    std::size_t length = 0;
    while (length < bytes.size()) {
        const Step step = firstStep(bytes.substr(length));
        if (!step.isValid) break;
        length += step.length;
    }
    return length;
}

bool isValidUTF8(std::string_view bytes) {
    return validUTF8Length(bytes) == bytes.size();
}

std::string repairedUTF8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (true) {
        const std::size_t valid = validUTF8Length(bytes);
        text += bytes.substr(0, valid);
        bytes.remove_prefix(valid);
        if (bytes.empty()) return text;
        text += replacement;
        bytes.remove_prefix(firstStep(bytes).length);
    }
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        const Step step = firstStep(text);
        if (!step.isValid || !isWhiteSpace(step.character)) break;
        text.remove_prefix(step.length);
    }
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xC0U) == 0x80U) --start;
        const Step step = firstStep(text.substr(start));
        if (!step.isValid || start + step.length != text.size() || !isWhiteSpace(step.character)) break;
        text.remove_suffix(step.length);
    }
    return text;
}

std::string visibleText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const Step step = firstStep(bytes);
        if (!step.isValid || isSeparatorOrDirection(step.character)) {
            text += replacement;
        } else if (step.character < 0x20 || step.character == 0x7F) {
            text += pictureOf(step.character);
        } else {
            text += bytes.substr(0, step.length);
        }
        bytes.remove_prefix(step.length);
    }
    return text;
}

std::string visibleLines(std::string_view bytes) {
    while (bytes.starts_with('\n') || bytes.starts_with("\r\n")) bytes.remove_prefix(bytes.find('\n') + 1);
    while (bytes.ends_with('\n') || bytes.ends_with('\r')) bytes.remove_suffix(1);
    std::string text;
    while (true) {
        const std::size_t end = bytes.find('\n');
        std::string_view line = bytes.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        text += visibleText(line);
        if (end == std::string_view::npos) return text;
        text += '\n';
        bytes.remove_prefix(end + 1);
    }
}

std::vector<std::string_view> splitDroppingEmpty(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0) pieces.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pieces;
}

std::string lowercasedASCII(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

}  // namespace cairnfield
