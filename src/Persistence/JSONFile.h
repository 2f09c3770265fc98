#pragma once
// The bytes of a stored JSON value: keys sorted, indented by two blanks, a newline at the end. Blocking, any
// thread.

#include "Models/JSON.h"

#include <functional>

namespace cairnfield::JSONFile {

/// Hands the parsed content to `decode`. A missing file is the first run and says nothing; an unreadable one,
/// one that is not JSON, or a `decode` that throws is one log line. `decode` has either finished or changed
/// nothing that matters: returns false when the caller's default stands.
bool read(const FilePath& file, const std::function<void(const Json&)>& decode);

/// Creates the folder when it is missing. Throws std::system_error or nlohmann::json::exception; the old file
/// then stands.
void write(const FilePath& file, const Json& value);

}  // namespace cairnfield::JSONFile
