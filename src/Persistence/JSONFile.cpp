#include "Persistence/JSONFile.h"

#include "Persistence/ApplicationSupport.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Files/AtomicFile.h"
#include "Shared/Files/Files.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace cairnfield {

bool JSONFile::read(const FilePath& file, const std::function<void(const Json&)>& decode) {
    try {
        const std::optional<std::string> bytes = readFile(file);
        if (!bytes) return false;
        decode(Json::parse(*bytes));
        return true;
    } catch (const std::exception& failure) {
        Log::persistence().error("Failed to decode {}: {}", visibleText(file.lastComponent()),
                                 visibleText(describe(failure)));
        return false;
    }
}

void JSONFile::write(const FilePath& file, const Json& value) {
    ApplicationSupport::ensureDirectory(file.parent());
    AtomicFile::write(file, value.dump(2) + "\n");
}

}  // namespace cairnfield
