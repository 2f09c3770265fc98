#pragma once
// Where this user keeps data and settings, by the base directory rules of the desktops. Worked out once at
// start, from the environment; nothing is created.

#include "Shared/Environment/Environment.h"
#include "Shared/Paths/FilePath.h"

namespace cairnfield {

struct BaseDirectories {
    FilePath home;
    FilePath dataHome;    ///< XDG_DATA_HOME, else .local/share in the home
    FilePath configHome;  ///< XDG_CONFIG_HOME, else .config in the home

    /// A value that is empty or relative counts as not set. Without a home in the environment, `accountHome`.
    [[nodiscard]] static BaseDirectories from(const Environment& environment, const FilePath& accountHome);

    /// Of this process, as it was started.
    [[nodiscard]] static BaseDirectories current();
};

}  // namespace cairnfield
