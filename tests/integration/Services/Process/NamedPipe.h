#pragma once
// A pipe with a name, through which a child under test and its test tell each other how far they are.

#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Paths/FilePath.h"

#include <string>
#include <string_view>

namespace cairnfield {

class NamedPipe {
public:
    /// Open at both ends from the start, so that no child waits for the test to come.
    explicit NamedPipe(FilePath path);

    [[nodiscard]] const std::string& path() const { return path_.bytes(); }

    /// The next line without its end. Fails the test and gives nothing when none comes within half a minute.
    [[nodiscard]] std::string line();
    void write(std::string_view text) const;

private:
    FilePath path_;
    FileDescriptor pipe_;
    std::string pending_;
};

}  // namespace cairnfield
