#include "Platform/Linux/Automounts.h"

#include "Platform/Linux/MountTable.h"
#include "Shared/Paths/PathContainment.h"

#include <array>
#include <fstream>
#include <iterator>
#include <limits.h>
#include <string>
#include <unistd.h>

namespace cairnfield {

bool hasAutomountBelow(std::string_view mountinfo, const FilePath& directory) {
    constexpr std::string_view mark = " - autofs ";
    constexpr int fieldsBeforeMountPoint = 4;
    for (std::size_t at = mountinfo.find(mark); at != std::string_view::npos;
         at = mountinfo.find(mark, at + 1)) {
        const std::size_t newline = mountinfo.rfind('\n', at);
        std::string_view line = mountinfo.substr(newline == std::string_view::npos ? 0 : newline + 1);
        for (int field = 0; field < fieldsBeforeMountPoint; ++field) line.remove_prefix(line.find(' ') + 1);
        const FilePath mountPoint(unescapedMountField(line.substr(0, line.find(' '))));
        if (isAtOrBelow(mountPoint, directory)) return true;
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
