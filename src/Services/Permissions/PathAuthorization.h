#pragma once
// Whether a path may be read. A sandboxed build would enter a security scope here; this one only asks the
// file system.

#include "Shared/Paths/FilePath.h"

#include <functional>

namespace cairnfield {

/// What a granted access hands back.
struct PathAccessToken {
    FilePath url;                   ///< the location that may now be read
    std::function<void()> release;  ///< to be called when the access ends, from any thread; empty when there
                                    ///< is nothing to give back
};

class PathAuthorizing {
public:
    virtual ~PathAuthorizing() = default;
    /// Throws CairnfieldError: PathMissing, else PermissionDenied.
    [[nodiscard]] virtual PathAccessToken beginAccess(const FilePath& url) const = 0;
};

class DirectDistributionPathAuthorization final : public PathAuthorizing {
public:
    [[nodiscard]] PathAccessToken beginAccess(const FilePath& url) const override;
};

}  // namespace cairnfield
