#pragma once
// Replacing a file as a whole. Blocking, any thread; one writer a file.
//
// The write, step by step: (1) a new file in the same folder, its name the target's with ".tmp" and six
// random letters or digits, mode 0600; (2) all bytes; (3) fsync of the file; (4) rename over the target; (5)
// fsync of the folder. A reader, a crash or a power cut at any point finds the old or the new file, whole. A
// failure before (4) removes the temporary file; after a crash it stays, and removeLeftovers() finds it by
// its name.

#include "Shared/Paths/FilePath.h"

#include <string_view>

namespace cairnfield::AtomicFile {

/// Throws std::system_error; then the old file is untouched. A failure of (5) is one log line instead, since
/// the new file is in place by then.
void write(const FilePath& target, std::string_view bytes);

/// Makes a file that is not there yet, in the same way. False when something has the name: nothing is changed
/// then. Throws as write() does.
[[nodiscard]] bool writeNew(const FilePath& target, std::string_view bytes);

/// Deletes temporary files of `target` that a crash left. Failures are one log line. Not while the target is
/// written.
void removeLeftovers(const FilePath& target);

}  // namespace cairnfield::AtomicFile
