#include "Platform/Linux/ChangeBatch.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

ChangeBatch::ChangeBatch(const std::vector<FilePath>& roots, std::chrono::milliseconds latency)
    : latency_(latency) {
    for (const FilePath& path : roots) roots_.push_back({.path = path});
}

void ChangeBatch::add(std::size_t root, std::string_view relative) {
    Root& changing = roots_[root];
    isEmpty_ = false;
    if (changing.isWhole) return;
    changing.changed.emplace(relative);
    if (changing.changed.size() <= maximumPaths) return;
    changing.isWhole = true;
    changing.changed.clear();
    changing.changed.emplace();
}

std::optional<ChangeBatch::Instant> ChangeBatch::due() const {
    if (isEmpty_) return std::nullopt;
    return lastTaken_ ? BootClock::add(*lastTaken_, latency_) : Instant::min();
}

std::vector<FilePath> ChangeBatch::take(Instant now) {
    std::vector<FilePath> paths;
    for (Root& root : roots_) {
        if (root.isIncomplete && !isEmpty_) root.changed.emplace();
        for (const std::string& relative : root.changed)
            paths.push_back(relative.empty() ? root.path : root.path.appending(relative));
        root.changed.clear();
        root.isWhole = false;
    }
    std::ranges::sort(paths);  // roots may lie in one another
    const auto repeated = std::ranges::unique(paths);
    paths.erase(repeated.begin(), repeated.end());
    if (!isEmpty_) lastTaken_ = now;
    isEmpty_ = true;
    ++number_;
    return paths;
}

}  // namespace cairnfield
