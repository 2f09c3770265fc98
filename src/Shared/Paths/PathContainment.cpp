#include "Shared/Paths/PathContainment.h"

namespace cairnfield {

bool isAtOrBelow(const FilePath& path, const FilePath& folder) {
    const std::string& inner = path.bytes();
    const std::string& outer = folder.bytes();
    if (outer.empty() || !inner.starts_with(outer)) return false;
    return inner.size() == outer.size() || outer.ends_with('/') || inner[outer.size()] == '/';
}

}  // namespace cairnfield
