#include "Services/Cleanup/MissingFiles.h"

#include "Services/Cleanup/GitIndexFile.h"
#include "Services/Git/WorktreeGitFiles.h"

#include <sys/stat.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <unordered_set>

namespace cairnfield {

namespace {

bool isMissing(const FilePath& path) {
    struct stat status{};
    return lstat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

std::optional<std::vector<GitIndexEntry>> indexOf(const Worktree& reviewed) {
    try {
        const std::optional<WorktreeGitFiles> files = gitFilesOf(reviewed.path);
        if (!files) return std::nullopt;
        const bool hasLongNames = reviewed.headSHA && reviewed.headSHA->size() == 64;
        return readGitIndex(files->own, hasLongNames ? 32 : 20);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<MissingFiles> missingFiles(const Worktree& reviewed) {
    std::unordered_set<std::string_view> missing;
    for (const std::string& path : reviewed.status.changedPaths) {
        if (isMissing(reviewed.path.appending(path))) missing.insert(path);
    }
    if (missing.empty()) return std::nullopt;
    const std::optional<std::vector<GitIndexEntry>> index = indexOf(reviewed);
    if (!index) return std::nullopt;

    // A staged deletion is in the list and not in the index, a conflict in the index up to three times.
    std::unordered_set<std::string_view> tracked = missing;
    for (const GitIndexEntry& entry : *index) {
        if (!entry.isSkipped && !entry.isLeftOutFolder()) tracked.insert(entry.path);
    }
    return MissingFiles{missing.size(), tracked.size()};
}

}  // namespace cairnfield
