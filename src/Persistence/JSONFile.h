#pragma once
// A stored JSON value: keys sorted, indented by two blanks, a newline at the end. Blocking, one thread at a
// time.

#include "Models/JSON.h"
#include "Shared/Files/StoredFile.h"

#include <functional>

namespace cairnfield::JSONFile {

/// Hands the parsed content to `decode`. A missing file is the first run and says nothing; an unreadable one,
/// one that is not JSON, or a `decode` that throws is one log line. `decode` has either finished or changed
/// nothing that matters: returns false when the caller's default stands.
bool read(StoredFile& file, const std::function<void(const Json&)>& decode);

/// Throws as StoredFile::replace does, or nlohmann::json::exception; the old file then stands.
void write(StoredFile& file, const Json& value);

}  // namespace cairnfield::JSONFile
