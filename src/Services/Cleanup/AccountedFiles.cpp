#include "Services/Cleanup/AccountedFiles.h"

#include "Services/Git/IgnoredFileClassifier.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace cairnfield {

namespace {

constexpr const char* sensitiveAppeared = " looks sensitive and appeared after the review.";

struct Judged {
    IgnoredEntryClass kind = IgnoredEntryClass::unknown;
    std::string_view upTo;  ///< the beginning of the path that decided
};

/// By the first of its components that says anything: what lies in rebuildable output is that too, and what
/// lies in something that looks sensitive stays sensitive.
Judged judged(std::string_view path) {
    std::size_t begin = 0;
    while (begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const IgnoredEntryClass kind = IgnoredFileClassifier::classify(path.substr(begin, end - begin));
        if (kind != IgnoredEntryClass::unknown) return {kind, path.substr(0, end)};
        begin = end + 1;
    }
    return {};
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
                               const FilesSeen& seen)
    : reviewed_(reviewed),
      untracked_(seen.untracked.begin(), seen.untracked.end()),
      reviewedUntracked_(reviewed.status.untrackedPaths.begin(), reviewed.status.untrackedPaths.end()),
      ignored_(reviewed.status.ignoredPaths.begin(), reviewed.status.ignoredPaths.end()) {
    tracked_.reserve(index.size());
    for (const GitIndexEntry& entry : index) tracked_.insert(entry.path);
    if (!seen.sensitive) return;
    seenSensitive_.emplace();
    for (const IgnoredEntry& entry : *seen.sensitive) seenSensitive_->insert(entry.relativePath);
}

AccountedFiles::Place AccountedFiles::placeOf(const std::string& directory, std::string_view name,
                                              const Place& above) const {
    using Standing = SensitiveTrail::Standing;
    Place place = above;
    place.isCovered = above.isCovered || ignored_.contains(directory + "/");
    place.trail.enter(name, place.isCovered ? Standing::inside : Standing::above);
    return place;
}

bool AccountedFiles::appearedSensitive(const std::string& path, std::string_view name,
                                       const Place& place) const {
    return seenSensitive_ && place.trail.counts(name) && !seenSensitive_->contains(path) &&
           !tracked_.contains(path) && !untracked_.contains(path);
}

std::optional<std::string> AccountedFiles::refusalOf(const std::string& path, std::string_view name,
                                                     const Place& place) {
    if (place.isCovered) {
        if (!appearedSensitive(path, name, place)) return std::nullopt;
        return FilePath(path).display() + sensitiveAppeared;
    }
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
    const Judged what = judged(path);
    const bool isSensitive = IgnoredFileClassifier::classify(name) == IgnoredEntryClass::sensitive;
    if (what.kind == IgnoredEntryClass::sensitive) return shown + sensitiveAppeared;
    if (what.kind == IgnoredEntryClass::rebuildable && !isTwin) {
        // A directory of sources may bear such a name too.
        if (isSensitive && holdsTrackedFiles(what.upTo)) return shown + sensitiveAppeared;
        return std::nullopt;
    }
    return shown + " is in no commit and was not in the review, and Git overlooks it.";
}

bool AccountedFiles::holdsTrackedFiles(std::string_view directory) const {
    const std::string prefix = std::string(directory) + "/";
    return std::ranges::any_of(tracked_, [&](std::string_view path) { return path.starts_with(prefix); });
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
