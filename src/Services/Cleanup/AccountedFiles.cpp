#include "Services/Cleanup/AccountedFiles.h"

#include "Services/Git/IgnoredFileClassifier.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace cairnfield {

namespace {

/// By the first of its components that says anything: what lies in rebuildable output is that too, and what
/// lies in something that looks sensitive stays sensitive.
IgnoredEntryClass classOf(std::string_view path) {
    while (!path.empty()) {
        const std::string_view name = path.substr(0, path.find('/'));
        const IgnoredEntryClass said = IgnoredFileClassifier::classify(name);
        if (said != IgnoredEntryClass::unknown) return said;
        path.remove_prefix(std::min(path.size(), name.size() + 1));
    }
    return IgnoredEntryClass::unknown;
}

std::optional<struct stat> statusOf(const FilePath& file) {
    struct stat status{};
    if (lstat(file.c_str(), &status) == 0) return status;
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw std::system_error(errno, std::generic_category(), file.display());
}

bool areOneFile(const FilePath& some, const FilePath& other) {
    const std::optional<struct stat> first = statusOf(some);
    const std::optional<struct stat> second = statusOf(other);
    return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
}

}  // namespace

AccountedFiles::AccountedFiles(const Worktree& reviewed, const std::vector<GitIndexEntry>& index,
                               const std::vector<std::string>& untracked)
    : reviewed_(reviewed),
      untracked_(untracked.begin(), untracked.end()),
      reviewedUntracked_(reviewed.status.untrackedPaths.begin(), reviewed.status.untrackedPaths.end()),
      ignored_(reviewed.status.ignoredPaths.begin(), reviewed.status.ignoredPaths.end()) {
    tracked_.reserve(index.size());
    for (const GitIndexEntry& entry : index) tracked_.insert(entry.path);
}

bool AccountedFiles::coversDirectory(const std::string& path) const {
    return ignored_.contains(path + "/");
}

std::optional<std::string> AccountedFiles::refusalOf(const std::string& path) {
    if (tracked_.contains(path) || untracked_.contains(path) || ignored_.contains(path)) return std::nullopt;
    const Names& twins = namesByFoldedCase();
    const auto [first, last] = twins.equal_range(lowercasedASCII(path));
    const bool isTwin = first != last;
    // A disk that does not tell cases apart shows a tracked file by a name that git wrote differently.
    const auto isThisFile = [&](const auto& twin) {
        return areOneFile(reviewed_.path.appending(twin.second), reviewed_.path.appending(path));
    };
    if (std::any_of(first, last, isThisFile)) return std::nullopt;

    const std::string shown = FilePath(path).display();
    if (reviewedUntracked_.contains(path))
        return shown + " was untracked at the review and is in no commit, and Git overlooks it by now.";
    switch (classOf(path)) {
        case IgnoredEntryClass::sensitive:
            return shown + " looks sensitive and appeared after the review.";
        case IgnoredEntryClass::rebuildable:
            if (!isTwin) return std::nullopt;
            break;
        case IgnoredEntryClass::unknown:
            break;
    }
    return shown + " is in no commit and was not in the review, and Git overlooks it.";
}

const AccountedFiles::Names& AccountedFiles::namesByFoldedCase() {
    if (!namesByFoldedCase_) {
        namesByFoldedCase_.emplace();
        namesByFoldedCase_->reserve(tracked_.size());
        for (const std::string_view path : tracked_) namesByFoldedCase_->emplace(lowercasedASCII(path), path);
    }
    return *namesByFoldedCase_;
}

}  // namespace cairnfield
