#include "Persistence/ApplicationSupport.h"

#include "Persistence/StoredFileNames.h"
#include "Shared/Files/Files.h"

namespace cairnfield {

namespace {

constexpr const char* folderName = "Cairnfield";

}  // namespace

ApplicationSupport::ApplicationSupport(const FilePath& dataHome, const FilePath& configHome)
    : directory_(dataHome.appending(folderName)), configDirectory_(configHome.appending(folderName)) {}

FilePath ApplicationSupport::recoveryVaultDirectory() const {
    return directory_.appending("Recovery");
}

FilePath ApplicationSupport::settingsFile() const {
    return configDirectory_.appending(StoredFileNames::settings);
}

void ApplicationSupport::ensureDirectory(const FilePath& directory) {
    cairnfield::ensureDirectory(directory);
}

}  // namespace cairnfield
