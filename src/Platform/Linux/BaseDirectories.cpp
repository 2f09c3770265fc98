#include "Platform/Linux/BaseDirectories.h"

#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace cairnfield {

namespace {

FilePath homeOfAccount() {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return FilePath("/");
    return FilePath(entry.pw_dir);
}

}  // namespace

BaseDirectories BaseDirectories::from(const Environment& environment, const FilePath& accountHome) {
    const auto absoluteOr = [&environment](const std::string& name, const FilePath& otherwise) {
        const std::optional<std::string> value = valueOf(environment, name);
        if (!value || !FilePath(*value).isAbsolute()) return otherwise;
        return FilePath(*value).standardized();
    };
    const FilePath home = absoluteOr("HOME", accountHome);
    return {.home = home,
            .dataHome = absoluteOr("XDG_DATA_HOME", home.appending(".local/share")),
            .configHome = absoluteOr("XDG_CONFIG_HOME", home.appending(".config"))};
}

BaseDirectories BaseDirectories::current() {
    return from(environmentAtStart(), homeOfAccount());
}

}  // namespace cairnfield
