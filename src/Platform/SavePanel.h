#pragma once
// Asking a person where to save a file. Main thread only.

#include "Shared/Paths/FilePath.h"

#include <functional>
#include <optional>
#include <string>

namespace cairnfield {

class SavePanel {
public:
    /// The place, absolute, or nothing when it was cancelled. Folders on the way there may not exist yet, and
    /// whoever saves makes them. A free place may be taken by the time that it is used.
    using Finished = std::function<void(const std::optional<FilePath>&)>;

    virtual ~SavePanel() = default;

    /// Opens the panel with a name that the person may change; its bytes stay what they are unless they do.
    /// Tells once, later. One panel at a time: another one that is still open is cancelled.
    virtual void show(std::string suggestedName, Finished finished) = 0;
};

}  // namespace cairnfield
