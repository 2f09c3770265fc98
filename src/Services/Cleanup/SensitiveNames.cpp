#include "Services/Cleanup/SensitiveNames.h"

#include "Services/Git/IgnoredFileClassifier.h"

namespace cairnfield {

namespace {

bool isSensitive(std::string_view name) {
    return IgnoredFileClassifier::classify(name) == IgnoredEntryClass::sensitive;
}

}  // namespace

void SensitiveTrail::enter(std::string_view directory, Standing standing) {
    if (isDecided_) return;
    const IgnoredEntryClass kind = IgnoredFileClassifier::classify(directory);
    if (kind == IgnoredEntryClass::unknown) return;
    state_ = kind == IgnoredEntryClass::sensitive ? State::sensitive : State::rebuildable;
    isDecided_ = standing == Standing::inside;
}

bool SensitiveTrail::counts(std::string_view file) const {
    return state_ == State::sensitive || (state_ == State::byName && isSensitive(file));
}

SensitiveNames::SensitiveNames(const std::vector<std::string>& ignoredPaths) {
    for (const std::string& path : ignoredPaths) {
        if (path.ends_with('/')) {
            directories_.insert(path.substr(0, path.size() - 1));
        } else {
            files_.insert(path);
        }
    }
}

bool SensitiveNames::counts(std::string_view path) const {
    const std::size_t ignoredEnd = endOfIgnoredDirectory(path);
    const bool isBelowIgnored = ignoredEnd != std::string_view::npos;
    const bool isListed = files_.contains(std::string(path));
    SensitiveTrail trail;
    std::size_t begin = 0;
    for (std::size_t end = path.find('/'); end != std::string_view::npos; end = path.find('/', begin)) {
        const std::string_view name = path.substr(begin, end - begin);
        SensitiveTrail::Standing standing = SensitiveTrail::Standing::above;
        if (isBelowIgnored && end >= ignoredEnd) standing = SensitiveTrail::Standing::inside;
        trail.enter(name, standing);
        if (!isBelowIgnored && !isListed && trail.isRebuildable()) return false;
        begin = end + 1;
    }
    if (begin == 0) return false;
    const std::string_view file = path.substr(begin);
    return trail.counts(file) || (isListed && isSensitive(file));
}

/// Where the path of the uppermost listed directory that it lies in ends; npos when it lies in none.
std::size_t SensitiveNames::endOfIgnoredDirectory(std::string_view path) const {
    if (directories_.empty()) return std::string_view::npos;
    std::size_t end = path.find('/');
    while (end != std::string_view::npos && !directories_.contains(std::string(path.substr(0, end))))
        end = path.find('/', end + 1);
    return end;
}

}  // namespace cairnfield
