#pragma once
// What `git config --list -z` prints, as far as a look at another repository needs it. Pure, any thread.

#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct GitSettings {
    std::vector<std::string> remoteURLs;  ///< of all remotes, for fetching
    bool isMirror = false;                ///< every reference is a copy of a remote's
    bool hasLongObjectNames = false;

    [[nodiscard]] static GitSettings parse(std::string_view list);
};

}  // namespace cairnfield
