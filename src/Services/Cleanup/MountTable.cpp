#include "Services/Cleanup/MountTable.h"

#include "Shared/Text/Text.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace cairnfield {

namespace {

constexpr std::size_t mountPointField = 4;

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

/// Blanks, tabs, newlines and backslashes stand as a backslash and three octal digits.
std::string unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 3 < text.size() && isOctal(text[i + 1]) &&
                              isOctal(text[i + 2]) && isOctal(text[i + 3]);
        if (!isEscape) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0'));
        i += 3;
    }
    return plain;
}

}  // namespace

std::vector<FilePath> mountPoints(std::string_view table) {
    std::vector<FilePath> points;
    for (const std::string_view line : splitDroppingEmpty(table, '\n')) {
        const std::vector<std::string_view> fields = splitDroppingEmpty(line, ' ');
        if (fields.size() > mountPointField) points.emplace_back(unescaped(fields[mountPointField]));
    }
    return points;
}

std::vector<FilePath> presentMountPoints() {
    std::ifstream file("/proc/self/mountinfo", std::ios::binary);
    const std::string table{std::istreambuf_iterator<char>(file), {}};
    if (!file || table.empty()) throw std::system_error(ENOENT, std::generic_category(), "the mount table");
    return mountPoints(table);
}

bool liesIn(const FilePath& path, const FilePath& folder) {
    const std::string& inner = path.bytes();
    const std::string& outer = folder.bytes();
    if (outer.empty() || !inner.starts_with(outer)) return false;
    return inner.size() == outer.size() || outer.ends_with('/') || inner[outer.size()] == '/';
}

}  // namespace cairnfield
