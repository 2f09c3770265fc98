#include "Services/Permissions/PathAuthorization.h"

#include "Shared/Errors/CairnfieldError.h"

#include <fcntl.h>
#include <unistd.h>

namespace cairnfield {

PathAccessToken DirectDistributionPathAuthorization::beginAccess(const FilePath& url) const {
    // Asked for the effective user, who does the reading. A path behind a folder that may not be entered
    // cannot be told from a missing one, and counts as missing.
    if (faccessat(AT_FDCWD, url.c_str(), F_OK, AT_EACCESS) != 0)
        throw CairnfieldError(CairnfieldError::PathMissing{url.bytes()});
    if (faccessat(AT_FDCWD, url.c_str(), R_OK, AT_EACCESS) != 0)
        throw CairnfieldError(CairnfieldError::PermissionDenied{url.bytes()});
    return {url, {}};
}

}  // namespace cairnfield
