#pragma once
// One of the program's own files, read and replaced as a whole. What it holds is never lost by a replacement:
// bytes that nobody could decode are kept beside it first, as "NAME.damaged", and a file that cannot be read
// stays as it is. What a person should know of that is said in the log and left in StoredFileNotices.
// Blocking; one thread at a time.

#include "Shared/Files/StoredFileNotices.h"
#include "Shared/Paths/FilePath.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace cairnfield {

class StoredFile {
public:
    /// Touches nothing. Without `notices` what goes wrong is in the log alone.
    explicit StoredFile(FilePath path, std::shared_ptr<StoredFileNotices> notices = nullptr);

    [[nodiscard]] const FilePath& path() const { return path_; }

    /// Hands the bytes to `decode`; first removes what a crash left behind. A missing file is the first run
    /// and says nothing; one that cannot be read, and one that `decode` throws over, is one log line. Returns
    /// whether `decode` finished.
    bool read(const std::function<void(const std::string& bytes)>& decode);

    /// Whether the last read() met a file that is there and cannot be read. Another read() asks anew.
    [[nodiscard]] bool isUnreadable() const { return condition_ == Condition::unreadable; }

    /// Replaces the file as AtomicFile::write does, and creates its folder when it is missing. Throws
    /// std::system_error, and then the old file stands: when the write fails, when the bytes that could not
    /// be decoded cannot be kept, and while the file is one that cannot be read. To be called after a read().
    void replace(std::string_view bytes);

private:
    enum class Condition { sound, damaged, unreadable };

    void keepDamaged();
    [[nodiscard]] FilePath keptPath(int number) const;
    void settle(Condition condition, std::string notice);

    const FilePath path_;
    const std::shared_ptr<StoredFileNotices> notices_;
    Condition condition_ = Condition::sound;
    std::error_code whyUnreadable_;
};

}  // namespace cairnfield
