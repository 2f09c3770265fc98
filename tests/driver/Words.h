#pragma once
// The words on the command line, taken apart. Wrong ones are told by WrongWords, which ends the driver with
// status 2.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

class WrongWords final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Words that are still to be taken, in order.
class Words {
public:
    explicit Words(std::vector<std::string> words) : words_(std::move(words)) {}

    /// Whether this option stands anywhere among the words; it is taken then.
    [[nodiscard]] bool takeOption(std::string_view name);
    /// The word after every appearance of this option; both are taken.
    [[nodiscard]] std::vector<std::string> takeValues(std::string_view name);
    /// The word after this option, which stands at most once; both are taken.
    [[nodiscard]] std::optional<std::string> takeValue(std::string_view name);
    /// The words after every appearance of this option, up to the next word that begins with "--", as
    /// absolute paths, at least one in all.
    [[nodiscard]] std::vector<FilePath> takePathsAfter(std::string_view name);
    /// The next word, `what` it is in case there is none.
    [[nodiscard]] std::string take(std::string_view what);
    /// All that are left, at least one, as absolute paths. A word that begins with "--" is an option that
    /// nobody knows, unless it comes after a "--".
    [[nodiscard]] std::vector<FilePath> takePaths(std::string_view what);
    /// One word as an absolute path, with the same rule.
    [[nodiscard]] FilePath takePath(std::string_view what);
    /// Nothing may be left.
    void end() const;

private:
    std::vector<std::string> words_;
};

/// A path as the person gave it, made absolute with the current directory.
[[nodiscard]] FilePath absolutePath(const std::string& word);

}  // namespace cairnfield
