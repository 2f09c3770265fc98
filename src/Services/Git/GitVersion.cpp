#include "Services/Git/GitVersion.h"

#include <charconv>
#include <utility>

namespace cairnfield::GitVersion {

namespace {

using Version = std::pair<int, int>;

/// The first with `worktree list -z`.
constexpr Version oldest{2, 36};

/// Takes a number off the beginning of the text.
std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

std::optional<Version> versionIn(std::string_view answer) {
    constexpr std::string_view words = "git version ";
    if (!answer.starts_with(words)) return std::nullopt;
    answer.remove_prefix(words.size());
    const std::optional<int> major = takeNumber(answer);
    if (!major || !answer.starts_with('.')) return std::nullopt;
    answer.remove_prefix(1);
    const std::optional<int> minor = takeNumber(answer);
    if (!minor) return std::nullopt;
    return Version{*major, *minor};
}

std::string worded(const Version& version) {
    return std::to_string(version.first) + "." + std::to_string(version.second);
}

}  // namespace

std::optional<std::string> whyTooOld(std::string_view answer, const FilePath& git) {
    const std::optional<Version> version = versionIn(answer);
    if (!version || *version >= oldest) return std::nullopt;
    return "The git at " + git.display() + " is version " + worded(*version) +
           ", which is too old. Cairnfield needs " + worded(oldest) + " or newer.";
}

}  // namespace cairnfield::GitVersion
