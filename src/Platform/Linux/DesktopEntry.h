#pragma once
// The text of a desktop entry, line by line, so that what is not understood stays as it was. A plain value
// without input or output. Only the group "Desktop Entry" is looked into.

#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

class DesktopEntry {
public:
    DesktopEntry() = default;
    /// Any bytes: lines that no desktop entry may hold are left out, since readers reject the whole file over
    /// one of them.
    explicit DesktopEntry(std::string_view text);

    /// The value as it is written, without the blanks around it; the last one where a key stands twice.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    /// Replaces the key's lines by one, or adds one at the end of the group, which is made when it is
    /// missing.
    void set(std::string_view key, std::string_view value);
    void remove(std::string_view key);

    [[nodiscard]] std::string text() const;

private:
    /// Where the group's lines begin and end, the header not among them.
    struct Group {
        std::size_t begin;
        std::size_t end;
    };
    [[nodiscard]] std::optional<Group> group() const;

    std::vector<std::string> lines_;
};

/// A value of Exec that runs the program with one plain word more, quoted by the rules of desktop entries.
[[nodiscard]] std::string execLine(const FilePath& program, std::string_view word);

/// The program that a value of Exec names, unquoted. Absent when the value cannot be read.
[[nodiscard]] std::optional<std::string> programOfExecLine(std::string_view value);

}  // namespace cairnfield
