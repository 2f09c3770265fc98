#pragma once
// A folder for the files of one input, empty at the start of each. It is the same folder every time, since
// making one costs more than most targets do.

#include "Shared/Paths/FilePath.h"

#include <string_view>

namespace cairnfield {

class Scratch {
public:
    Scratch();
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] const FilePath& path() const;
    /// With the folders that its name needs.
    void write(std::string_view name, std::string_view content) const;
};

}  // namespace cairnfield
