#pragma once
// Where this user keeps data and settings, by the base directory rules of the desktops. Worked out once at
// start, from the environment; nothing is created.

#include "Shared/Paths/FilePath.h"

#include <functional>
#include <optional>
#include <string>

namespace cairnfield {

struct BaseDirectories {
    FilePath home;
    FilePath dataHome;    ///< XDG_DATA_HOME, else .local/share in the home
    FilePath configHome;  ///< XDG_CONFIG_HOME, else .config in the home

    /// The value of an environment variable; absent when it is not set.
    using Lookup = std::function<std::optional<std::string>(const std::string& name)>;

    /// A value that is empty or relative counts as not set. Without a home in the environment, `accountHome`.
    [[nodiscard]] static BaseDirectories from(const Lookup& lookup, const FilePath& accountHome);

    /// Of this process. Not beside a thread that changes the environment.
    [[nodiscard]] static BaseDirectories current();
};

}  // namespace cairnfield
