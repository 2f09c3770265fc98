#include "Features/SavePanel/SavePlace.h"

#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <unistd.h>

namespace cairnfield {

namespace {

/// Links to nothing take a name too.
bool isTaken(const FilePath& path) {
    struct stat status{};
    return lstat(path.c_str(), &status) == 0;
}

bool isFolder(const FilePath& path) {
    struct stat status{};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::string whyNotSavedAt(const FilePath& folder, const std::string& name) {
    if (name.empty()) return "Type a name for the file.";
    if (name.find('/') != std::string::npos || name == "." || name == "..")
        return "A file cannot have this name.";
    FilePath nearest = folder.standardized();
    while (!isTaken(nearest) && nearest.parent() != nearest) nearest = nearest.parent();
    if (!isFolder(nearest)) return nearest.display() + " is not a folder.";
    if (access(nearest.c_str(), W_OK | X_OK) != 0) return "You cannot save in " + nearest.display() + ".";
    if (isTaken(folder.appending(name)))
        return visibleText(name) + " already exists there. Nothing is replaced: choose another name.";
    return {};
}

}  // namespace cairnfield
