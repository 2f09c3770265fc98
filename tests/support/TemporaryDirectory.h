#pragma once
// A directory of a test's own, gone with everything in it when the test ends, whatever its permissions were
// set to.

#include "Shared/Paths/FilePath.h"

#include <string>

namespace cairnfield {

class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const FilePath& path() const { return path_; }

    /// The path of something inside; a missing parent directory is made.
    [[nodiscard]] FilePath operator/(std::string_view relative) const;
    /// Writes a file with its missing parents and returns its path.
    FilePath write(std::string_view relative, std::string_view content = "content\n") const;
    FilePath makeDirectory(std::string_view relative) const;

private:
    FilePath path_;
};

/// The bytes of a file. Fails the test when it cannot be read.
[[nodiscard]] std::string contentOf(const FilePath& file);

}  // namespace cairnfield
