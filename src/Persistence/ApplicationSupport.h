#pragma once
// Where the program keeps its files, and where is left what a person should know about them. Made from the
// environment once, in Main; copies share the notices. It works out locations and touches nothing unless
// asked to.

#include "Shared/Files/StoredFileNotices.h"
#include "Shared/Paths/FilePath.h"

#include <memory>

namespace cairnfield {

class ApplicationSupport {
public:
    /// `dataHome` is the user's data folder, `configHome` that of settings. Ours lies inside each.
    ApplicationSupport(const FilePath& dataHome, const FilePath& configHome);

    /// The folder of the JSON files and the vault, named "Cairnfield".
    [[nodiscard]] const FilePath& directory() const { return directory_; }
    [[nodiscard]] FilePath recoveryVaultDirectory() const;  ///< inside `directory`
    [[nodiscard]] FilePath settingsFile() const;

    [[nodiscard]] const std::shared_ptr<StoredFileNotices>& notices() const { return notices_; }

    /// Creates the folder and its missing parents, readable by the user alone; one that is there is success.
    /// Throws std::system_error.
    static void ensureDirectory(const FilePath& directory);

private:
    FilePath directory_;
    FilePath configDirectory_;
    std::shared_ptr<StoredFileNotices> notices_ = std::make_shared<StoredFileNotices>();
};

}  // namespace cairnfield
