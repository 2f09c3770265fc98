#pragma once
// What the file system says of one item, links not followed: the little that an inspection reads without git.
// One tiny blocking call each, from any thread.

#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <optional>

namespace cairnfield {

struct FileFacts {
    bool isDirectory = false;
    Date modifiedAt{};  ///< of the content; held between the years 1843 and 2223, so that an age can be
                        ///< reckoned
};

/// Absent when there is no such item, or when it cannot be asked.
[[nodiscard]] std::optional<FileFacts> factsOf(const FilePath& item);

/// Whether nothing is there, links followed. What is merely out of reach counts as there.
[[nodiscard]] bool nothingExistsAt(const FilePath& item);

}  // namespace cairnfield
