#pragma once
// Watches what lies on the way to each root, so that a root's being moved, deleted, replaced or brought back
// is noticed although nothing in it says so: every directory and link of its path for its own moving or
// going, and the last directory there is for the coming and going of the one name that leads on. Places that
// this user may not read are left out. Used by one thread at a time.

#include "Platform/Linux/InotifyQueue.h"
#include "Shared/Paths/FilePath.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class RootGuards {
public:
    struct Concerned {
        std::set<std::size_t> moved;    ///< something on the way moved or went
        std::set<std::size_t> inDoubt;  ///< these and those where a name came or went
    };

    /// Throws std::system_error.
    RootGuards() = default;

    [[nodiscard]] int descriptor() const noexcept { return queue_.descriptor(); }

    /// Replaces what is guarded.
    void guard(const std::vector<FilePath>& roots);
    /// Which roots, by position, what waits in the queue is about. Takes it out.
    [[nodiscard]] Concerned takeEvents();

private:
    struct Guard {
        std::set<std::size_t> roots;
        std::set<std::pair<std::string, std::size_t>> awaited;  ///< name, root
    };

    void guardPlace(const std::string& place, std::size_t root, const std::string* awaited);
    void guardWay(const FilePath& path, std::size_t root);

    InotifyQueue queue_;
    std::map<int, Guard> guards_;
};

}  // namespace cairnfield
