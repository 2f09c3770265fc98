#pragma once
// A path of the file system: bytes, not text. Carried as given, compared in its standardized form, repaired
// only to be shown. A plain value without input or output; what it names may not exist.

#include <compare>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

class FilePath {
public:
    FilePath() = default;
    explicit FilePath(std::string bytes) : bytes_(std::move(bytes)) {}

    [[nodiscard]] const std::string& bytes() const noexcept { return bytes_; }
    [[nodiscard]] const char* c_str() const noexcept { return bytes_.c_str(); }
    [[nodiscard]] bool isEmpty() const noexcept { return bytes_.empty(); }
    [[nodiscard]] bool isAbsolute() const noexcept { return bytes_.starts_with('/'); }

    /// Without repeated and trailing slashes, and without "." and ".." components. By text alone: links are
    /// not followed, and ".." at the root is dropped. A relative path keeps the ".." that it begins with.
    /// Keys of maps and stored paths are always in this form.
    [[nodiscard]] FilePath standardized() const;

    /// What follows the last slash, trailing slashes aside; "/" for the root and empty for the empty path.
    [[nodiscard]] std::string lastComponent() const;

    /// Everything before the last component; the root is its own parent, and a bare name has the empty one.
    [[nodiscard]] FilePath parent() const;

    /// The path of something inside, with exactly one slash between. `relative` is not standardized; the
    /// empty path with something inside is that alone.
    [[nodiscard]] FilePath appending(std::string_view relative) const;

    /// The components between slashes, the root not counted: "/a/b" has two.
    [[nodiscard]] std::vector<std::string> components() const;

    /// For people: valid UTF-8 on one line, with control and direction-changing characters made visible.
    [[nodiscard]] std::string display() const;

    friend auto operator<=>(const FilePath&, const FilePath&) = default;
    friend bool operator==(const FilePath&, const FilePath&) = default;

private:
    std::string bytes_;
};

/// The form that a path takes in a JSON file. Valid UTF-8 stands as it is. Each byte that is not part of
/// valid UTF-8 becomes U+0000 and two lower-case hexadecimal digits; no path holds a NUL, so the form is
/// unambiguous both ways. A U+0000 that introduces no such byte reads as U+FFFD: a path that was read never
/// ends early at a NUL.
[[nodiscard]] std::string pathToJSONText(const FilePath& path);
[[nodiscard]] FilePath pathFromJSONText(std::string_view text);

}  // namespace cairnfield

template <>
struct std::hash<cairnfield::FilePath> {
    std::size_t operator()(const cairnfield::FilePath& path) const noexcept {
        return std::hash<std::string>{}(path.bytes());
    }
};
