#include "Services/Git/ActivityDetecting.h"
#include "Services/Git/FileFacts.h"

#include <fmt/format.h>

#include <algorithm>

namespace cairnfield {

namespace {

/// The newest modification of the root and the Git control files. In a linked worktree ".git" is a file, and
/// the last two have no date.
std::optional<Date> newestModification(const FilePath& root) {
    std::optional<Date> newest;
    for (const FilePath& place :
         {root, root.appending(".git"), root.appending(".git/index"), root.appending(".git/HEAD")}) {
        const std::optional<FileFacts> facts = factsOf(place);
        if (facts) newest = std::max(newest, std::optional(facts->modifiedAt));
    }
    return newest;
}

std::string reasonFor(double age) {
    const auto minutes = std::max<std::int64_t>(1, static_cast<std::int64_t>(age / 60));
    return fmt::format("Files changed about {} minute{} ago.", minutes, minutes == 1 ? "" : "s");
}

}  // namespace

Task<ActivitySignal> FileSystemActivityDetector::activity(FilePath path, double window) {
    ActivitySignal signal;
    signal.lastActivity = newestModification(path);
    if (!signal.lastActivity) co_return signal;
    const double age = secondsBetween(*signal.lastActivity, clock_.now());
    signal.isActive = age < window;
    if (signal.isActive) signal.reason = reasonFor(age);
    co_return signal;
}

}  // namespace cairnfield
