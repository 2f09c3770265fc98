#include "Services/Git/WorktreeIdentity.h"

#include "Services/Git/WorktreeGitFiles.h"
#include "Shared/Errors/CairnfieldError.h"

#include <sys/stat.h>

#include <cerrno>
#include <exception>
#include <system_error>

namespace cairnfield {

namespace {

/// Absent when nothing is there.
std::optional<struct stat> statusOf(const FilePath& path) {
    struct stat status{};
    if (stat(path.c_str(), &status) == 0) return status;
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw std::system_error(errno, std::generic_category(), path.display());
}

bool isDirectory(const FilePath& path) {
    const std::optional<struct stat> status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
}

/// By what the paths lead to, since one directory has several paths where links or bind mounts are.
bool isSameDirectory(const FilePath& one, const FilePath& other) {
    const std::optional<struct stat> first = statusOf(one);
    const std::optional<struct stat> second = statusOf(other);
    return first && second && S_ISDIR(first->st_mode) && first->st_dev == second->st_dev &&
           first->st_ino == second->st_ino;
}

/// Not even a link that leads nowhere.
bool nothingIsNamed(const FilePath& path) {
    struct stat status{};
    return lstat(path.c_str(), &status) != 0 && errno == ENOENT;
}

bool isCommonDirectoryOf(const FilePath& common, const FilePath& repositoryRoot) {
    if (isSameDirectory(common, repositoryRoot)) return true;
    const std::optional<WorktreeGitFiles> files = gitDirectoriesOf(repositoryRoot);
    return files && isSameDirectory(common, files->common);
}

/// The directory is compared and not the Git file, which a copy made of hard links shares with its original.
bool namesWorktree(const FilePath& ownGitDirectory, const FilePath& worktree) {
    const std::optional<FilePath> back = gitFileNamedBy(ownGitDirectory);
    return back && back->lastComponent() == ".git" && isSameDirectory(back->parent(), worktree);
}

std::string whereItsWorkIs(const GitWorktreeEntry& entry) {
    constexpr std::size_t shortLength = 7;
    if (entry.branch) return " Its last commit is on the branch " + *entry.branch + ".";
    if (entry.head) return " Its last commit is " + entry.head->substr(0, shortLength) + ", on no branch.";
    return {};
}

std::string howToMend(const FilePath& repositoryRoot) {
    return " To see what it still holds and to clean it again, run in " + repositoryRoot.display() +
           ": git worktree repair";
}

}  // namespace

WorktreeLink linkOf(const FilePath& worktree, const FilePath& repositoryRoot) {
    if (!isDirectory(worktree)) return WorktreeLink::leadsElsewhere;
    if (nothingIsNamed(worktree.appending(".git"))) return WorktreeLink::gitFileMissing;
    const std::optional<WorktreeGitFiles> files = gitDirectoriesOf(worktree);
    if (!files) return WorktreeLink::leadsNowhere;
    const bool isIntact = !isSameDirectory(files->own, files->common) &&
                          isCommonDirectoryOf(files->common, repositoryRoot) &&
                          namesWorktree(files->own, worktree);
    return isIntact ? WorktreeLink::intact : WorktreeLink::leadsElsewhere;
}

std::optional<std::string> whyNotTheListedWorktree(const GitWorktreeEntry& entry,
                                                   const FilePath& repositoryRoot) {
    if (entry.isMain) return std::nullopt;
    try {
        switch (linkOf(entry.path, repositoryRoot)) {
            case WorktreeLink::intact:
                return std::nullopt;
            case WorktreeLink::gitFileMissing:
                return "Its Git file is missing, as after a removal that was interrupted." +
                       whereItsWorkIs(entry) +
                       " If Cairnfield had Git remove it, its work was proven to be elsewhere before." +
                       howToMend(repositoryRoot);
            case WorktreeLink::leadsNowhere:
                return "Its Git file leads nowhere, as after the repository was moved." +
                       whereItsWorkIs(entry) + howToMend(repositoryRoot);
            case WorktreeLink::leadsElsewhere:
                break;
        }
    } catch (const std::exception& failure) {
        return describe(failure);
    }
    return "Its path leads to something else than the worktree that Git lists there, such as another "
           "repository.";
}

bool isStillTheReviewedWorktree(const Worktree& reviewed) {
    try {
        return linkOf(reviewed.path, reviewed.repositoryRoot) == WorktreeLink::intact;
    } catch (const std::exception&) {
        return false;
    }
}

bool isOwnRepository(const FilePath& checkout, const FilePath& commonDirectory) {
    try {
        const std::optional<WorktreeGitFiles> files = gitDirectoriesOf(checkout);
        return files && isSameDirectory(files->common, commonDirectory);
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace cairnfield
