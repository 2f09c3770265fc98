#pragma once
// What the system says of a volume, in a test: what the test has set. Remembers what it was asked about. One
// thread at a time.

#include "Platform/Volume.h"

#include <cerrno>
#include <set>
#include <system_error>
#include <vector>

namespace cairnfield {

class SettableVolume final : public VolumeInformation {
public:
    VolumeFacts answer;
    std::vector<FilePath> mounted;
    std::set<FilePath> missing;  ///< what does not exist
    mutable std::vector<FilePath> asked;

    [[nodiscard]] std::vector<FilePath> mountPoints() const override { return mounted; }
    [[nodiscard]] VolumeFacts facts(const FilePath& path) const override {
        asked.push_back(path);
        if (missing.contains(path)) throw std::system_error(ENOENT, std::generic_category());
        return answer;
    }
};

}  // namespace cairnfield
