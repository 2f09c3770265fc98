#include "Platform/Linux/DesktopEntry.h"

#include "Shared/Text/Text.h"

#include <algorithm>

namespace cairnfield {

namespace {

constexpr std::string_view header = "[Desktop Entry]";
constexpr std::string_view escapedInQuotes = "\"`$\\";

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isHeader(std::string_view line) {
    return line.starts_with('[') && withoutBlanks(line).ends_with(']');
}

std::string_view keyOf(std::string_view line) {
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos || line.starts_with('#') || line.starts_with('[')) return {};
    return withoutBlanks(line.substr(0, sign));
}

/// The escapes that every text value knows. Absent when one of them is none.
std::optional<std::string> unescapedValue(std::string_view value) {
    std::string plain;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\') {
            plain += value[i];
            continue;
        }
        if (++i == value.size()) return std::nullopt;
        constexpr std::string_view letters = "sntr\\";
        constexpr std::string_view meanings = " \n\t\r\\";
        const std::size_t place = letters.find(value[i]);
        if (place == std::string_view::npos) return std::nullopt;
        plain += meanings[place];
    }
    return plain;
}

/// The first word of a command line, its quotes taken off.
std::optional<std::string> firstWord(std::string_view line) {
    line = withoutBlanks(line);
    if (!line.starts_with('"')) return std::string(line.substr(0, line.find_first_of(" \t\n")));
    std::string word;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') return word;
        const bool isEscape = line[i] == '\\' && i + 1 < line.size() &&
                              escapedInQuotes.find(line[i + 1]) != std::string_view::npos;
        word += line[isEscape ? ++i : i];
    }
    return std::nullopt;  // the closing quote is missing
}

}  // namespace

DesktopEntry::DesktopEntry(std::string_view text) {
    bool isInGroup = false;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const bool isText = isValidUTF8(line) && line.find('\0') == std::string_view::npos;
        if (isHeader(line)) isInGroup = isText;  // a group goes with its header, or it would join another
        const bool isFree = withoutBlanks(line).empty() || line.starts_with('#') || isHeader(line);
        const bool isPossible = isFree || (isInGroup && !keyOf(line).empty());
        if (isPossible && isText) lines_.emplace_back(line);
    }
}

std::optional<DesktopEntry::Group> DesktopEntry::group() const {
    const auto start =
        std::ranges::find_if(lines_, [](const std::string& line) { return withoutBlanks(line) == header; });
    if (start == lines_.end()) return std::nullopt;
    const auto end = std::find_if(start + 1, lines_.end(), isHeader);
    return Group{static_cast<std::size_t>(start - lines_.begin()) + 1,
                 static_cast<std::size_t>(end - lines_.begin())};
}

std::optional<std::string> DesktopEntry::value(std::string_view key) const {
    const std::optional<Group> range = group();
    if (!range) return std::nullopt;
    for (std::size_t i = range->end; i > range->begin; --i) {
        const std::string_view line = lines_[i - 1];
        if (keyOf(line) == key) return std::string(withoutBlanks(line.substr(line.find('=') + 1)));
    }
    return std::nullopt;
}

void DesktopEntry::set(std::string_view key, std::string_view value) {
    if (!group()) lines_.emplace(lines_.begin(), header);
    const std::string added = std::string(key) + "=" + std::string(value);
    Group range = *group();
    for (std::size_t i = range.begin; i < range.end; ++i) {
        if (keyOf(lines_[i]) != key) continue;
        lines_[i].clear();  // so that remove() below leaves it
        remove(key);
        lines_[i] = added;
        return;
    }
    while (range.end > range.begin && withoutBlanks(lines_[range.end - 1]).empty()) --range.end;
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(range.end), added);
}

void DesktopEntry::remove(std::string_view key) {
    const std::optional<Group> range = group();
    if (!range) return;
    const auto begin = lines_.begin() + static_cast<std::ptrdiff_t>(range->begin);
    const auto end = lines_.begin() + static_cast<std::ptrdiff_t>(range->end);
    lines_.erase(std::remove_if(begin, end, [&](const std::string& line) { return keyOf(line) == key; }),
                 end);
}

std::string DesktopEntry::text() const {
    std::string text;
    for (const std::string& line : lines_) text += line + "\n";
    return text;
}

std::string execLine(const FilePath& program, std::string_view word) {
    std::string line = "\"";
    for (const char character : program.bytes()) {
        // A percent sign would begin a code; what a shell would act on is escaped; and the value as a whole
        // has escapes of its own, which double every backslash once more.
        if (character == '%') {
            line += "%%";
        } else if (character == '\\') {
            line += "\\\\\\\\";
        } else if (escapedInQuotes.find(character) != std::string_view::npos) {
            line += std::string("\\\\") + character;
        } else if (character == '\n') {
            line += "\\n";
        } else if (character == '\t') {
            line += "\\t";
        } else if (character == '\r') {
            line += "\\r";
        } else {
            line += character;
        }
    }
    return line + "\" " + std::string(word);
}

std::optional<std::string> programOfExecLine(std::string_view value) {
    const std::optional<std::string> line = unescapedValue(value);
    std::optional<std::string> word = line ? firstWord(*line) : std::nullopt;
    if (!word) return std::nullopt;
    for (std::size_t i = 0; (i = word->find("%%", i)) != std::string::npos; ++i) word->erase(i, 1);
    return word;
}

}  // namespace cairnfield
