#include "Services/Cleanup/RecoveryBranchNaming.h"

#include "Shared/Formatting/Characters.h"

#include <algorithm>

namespace cairnfield::RecoveryBranchNaming {

namespace {

constexpr std::size_t maximumLength = 60;
constexpr std::string_view trimmedAtEnds = "-.";
constexpr std::string_view lockSuffix = ".lock";

bool isKept(const std::string& character) {
    if (character.size() != 1) return false;
    const char c = character.front();
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.';
}

/// ISO 8601 in UTC without its punctuation.
std::string stamp(Date date) {
    std::string text = iso8601(date);
    std::erase_if(text, [](char c) { return c == '-' || c == ':' || c == 'Z'; });
    std::ranges::replace(text, 'T', '-');
    return text;
}

/// "20260131-174502".
bool isStamp(std::string_view text) {
    constexpr std::string_view form = "dddddddd-dddddd";
    return std::ranges::equal(text, form, [](char c, char expected) {
        return expected == 'd' ? c >= '0' && c <= '9' : c == expected;
    });
}

}  // namespace

std::string branchName(std::string_view prefix, std::string_view repository, Date date) {
    return std::string(prefix) + "/" + sanitize(repository) + "/" + stamp(date);
}

bool differInTheirMomentAlone(std::string_view branch, std::string_view other) {
    const std::size_t slash = branch.rfind('/');
    if (slash == std::string_view::npos || other.rfind('/') != slash) return false;
    return branch.substr(0, slash) == other.substr(0, slash) && isStamp(branch.substr(slash + 1)) &&
           isStamp(other.substr(slash + 1));
}

std::string sanitize(std::string_view name) {
    std::string text;
    bool isInRun = false;
    for (const std::string& character : userPerceivedCharacters(name)) {
        if (isKept(character)) {
            text += character;
        } else if (!isInRun) {
            text += '-';
        }
        isInRun = !isKept(character);
    }
    text.erase(0, std::min(text.find_first_not_of(trimmedAtEnds), text.size()));
    text.erase(text.find_last_not_of(trimmedAtEnds) + 1);
    if (text.ends_with(lockSuffix)) text.erase(text.size() - lockSuffix.size());
    if (text.empty()) return "worktree";
    return text.substr(0, maximumLength);
}

}  // namespace cairnfield::RecoveryBranchNaming
