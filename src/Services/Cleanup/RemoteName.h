#pragma once
// A remote's name comes out of the repository's own settings, where anything can be called a remote. git
// takes a name that begins with a dash for an option, and one of its options names a program to run. Pure,
// any thread.

#include <string_view>

namespace cairnfield {

/// Such a remote is never named to git.
[[nodiscard]] inline bool readsAsOption(std::string_view remoteName) {
    return remoteName.starts_with('-');
}

}  // namespace cairnfield
