#include "Services/Cleanup/ChosenFiles.h"

#include "Services/Cleanup/LocalFile.h"
#include "Services/Cleanup/PathPresence.h"

#include <unordered_set>

namespace cairnfield {

std::optional<CairnfieldError> refusalForUnarchived(const std::vector<IgnoredEntry>& chosen,
                                                    const std::vector<RecoveryVaultEntry>& archived,
                                                    const FilePath& worktree) {
    std::unordered_set<std::string> copied;
    for (const RecoveryVaultEntry& entry : archived) copied.insert(entry.relativePath.bytes());
    for (const IgnoredEntry& entry : chosen) {
        if (copied.contains(entry.relativePath)) continue;
        const FilePath file = worktree.appending(entry.relativePath);
        if (presenceOf(file) == PathPresence::absent || isLinkThatKeepsNothing(worktree, entry)) continue;
        return CairnfieldError(CairnfieldError::RecoveryVaultFailure{
            FilePath(entry.relativePath).display() + " was not there when the others were copied."});
    }
    return std::nullopt;
}

}  // namespace cairnfield
