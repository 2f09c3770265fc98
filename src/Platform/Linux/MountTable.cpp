#include "Platform/Linux/MountTable.h"

#include "Shared/Text/Text.h"

#include <algorithm>
#include <iterator>

namespace cairnfield {

namespace {

constexpr std::ptrdiff_t mountPointField = 4;

bool isOctal(char character) {
    return character >= '0' && character <= '7';
}

}  // namespace

std::string unescapedMountField(std::string_view field) {
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

std::vector<FilePath> mountPointsIn(std::string_view mountinfo) {
    std::vector<FilePath> points;
    for (const std::string_view line : splitDroppingEmpty(mountinfo, '\n')) {
        const std::vector<std::string_view> fields = splitDroppingEmpty(line, ' ');
        if (std::ssize(fields) > mountPointField)
            points.emplace_back(unescapedMountField(fields[mountPointField]));
    }
    return points;
}

std::optional<FilePath> sourceOfMount(std::string_view mountinfo, const FilePath& mountPoint) {
    constexpr std::ptrdiff_t fieldsFromMarkToSource = 2;
    std::optional<FilePath> source;
    for (const std::string_view line : splitDroppingEmpty(mountinfo, '\n')) {
        const std::vector<std::string_view> fields = splitDroppingEmpty(line, ' ');
        const auto mark = std::ranges::find(fields, "-");
        if (mark - fields.begin() <= mountPointField || fields.end() - mark <= fieldsFromMarkToSource)
            continue;
        if (unescapedMountField(fields[mountPointField]) != mountPoint.bytes()) continue;
        source = FilePath(unescapedMountField(mark[fieldsFromMarkToSource]));
    }
    return source;
}

}  // namespace cairnfield
