#include "Platform/Linux/Automounts.h"

#include <array>
#include <fstream>
#include <iterator>
#include <limits.h>
#include <string>
#include <unistd.h>

namespace cairnfield {

namespace {

bool isOctal(char character) {
    return character >= '0' && character <= '7';
}

/// Blanks, tabs, newlines and backslashes stand in the file as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
    std::string plain;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const bool escape = field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) &&
                            isOctal(field[i + 2]) && isOctal(field[i + 3]);
        if (!escape) {
            plain += field[i];
            continue;
        }
        plain +=
            static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0'));
        i += 3;
    }
    return plain;
}

bool isAtOrBelow(std::string_view path, std::string_view directory) {
    if (!path.starts_with(directory)) return false;
    return path.size() == directory.size() || directory.ends_with('/') || path[directory.size()] == '/';
}

}  // namespace

bool hasAutomountBelow(std::string_view mountinfo, const FilePath& directory) {
    constexpr std::string_view mark = " - autofs ";
    constexpr int fieldsBeforeMountPoint = 4;
    for (std::size_t at = mountinfo.find(mark); at != std::string_view::npos;
         at = mountinfo.find(mark, at + 1)) {
        const std::size_t newline = mountinfo.rfind('\n', at);
        std::string_view line = mountinfo.substr(newline == std::string_view::npos ? 0 : newline + 1);
        for (int field = 0; field < fieldsBeforeMountPoint; ++field) line.remove_prefix(line.find(' ') + 1);
        if (isAtOrBelow(unescaped(line.substr(0, line.find(' '))), directory.bytes())) return true;
    }
    return false;
}

bool hasAutomountBelow(int directory) {
    std::array<char, PATH_MAX> path = {};
    const std::string link = "/proc/self/fd/" + std::to_string(directory);
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    std::ifstream mountinfo("/proc/self/mountinfo", std::ios::binary);
    if (length < 0 || !mountinfo) return false;
    const std::string text{std::istreambuf_iterator<char>(mountinfo), {}};
    return hasAutomountBelow(text, FilePath(std::string(path.data(), static_cast<std::size_t>(length))));
}

}  // namespace cairnfield
