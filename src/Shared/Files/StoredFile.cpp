#include "Shared/Files/StoredFile.h"

#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Files/AtomicFile.h"
#include "Shared/Files/Files.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <optional>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::string_view mark = ".damaged";
constexpr int mostKept = 1000;  ///< more than that is a fault that repeats itself, and would fill the disk

bool exists(const FilePath& path) {
    struct stat status{};
    return lstat(path.c_str(), &status) == 0;
}

/// Whether the file holds exactly these bytes. False as well when that cannot be told.
bool holds(const FilePath& file, const std::string& bytes) {
    try {
        return readFile(file) == bytes;
    } catch (const std::system_error&) {
        return false;
    }
}

std::string nameOf(const FilePath& path) {
    return visibleText(path.lastComponent());
}

std::string keptNotice(const FilePath& file, const FilePath& kept) {
    return "An earlier " + nameOf(file) + " could not be understood. It is kept as " + nameOf(kept) + " in " +
           kept.parent().display() + ". This line goes when that file does.";
}

}  // namespace

StoredFile::StoredFile(FilePath path, std::shared_ptr<StoredFileNotices> notices)
    : path_(std::move(path)), notices_(std::move(notices)) {}

bool StoredFile::read(const std::function<void(const std::string&)>& decode) {
    AtomicFile::removeLeftovers(path_);
    const std::string name = nameOf(path_);
    std::optional<std::string> bytes;
    try {
        bytes = readFile(path_);
    } catch (const std::system_error& failure) {
        Log::persistence().error("Failed to decode {}: {}", name, visibleText(describe(failure)));
        whyUnreadable_ = failure.code();
        settle(Condition::unreadable, name + " cannot be read (" + describe(failure) +
                                          "). It stays as it is, and nothing new is stored until it can be.");
        return false;
    }
    try {
        if (bytes) decode(*bytes);
    } catch (const std::exception& failure) {
        Log::persistence().error("Failed to decode {}: {}", name, visibleText(describe(failure)));
        settle(Condition::damaged, name +
                                       " could not be understood, so nothing of it is shown. Before anything "
                                       "new is stored it is kept as " +
                                       nameOf(keptPath(1)) + ".");
        return false;
    }
    const FilePath kept = keptPath(1);
    settle(Condition::sound, exists(kept) ? keptNotice(path_, kept) : "");
    return bytes.has_value();
}

void StoredFile::replace(std::string_view bytes) {
    if (isUnreadable()) throw std::system_error(whyUnreadable_, path_.display());
    ensureDirectory(path_.parent());
    if (condition_ == Condition::damaged) keepDamaged();
    AtomicFile::write(path_, bytes);
    condition_ = Condition::sound;
}

/// What is kept is what is there now: somebody may have mended it by hand since it was read.
void StoredFile::keepDamaged() {
    const std::optional<std::string> bytes = readFile(path_);
    if (!bytes) return;
    for (int number = 1; number <= mostKept; ++number) {
        const FilePath kept = keptPath(number);
        AtomicFile::removeLeftovers(kept);
        if (!holds(kept, *bytes) && !AtomicFile::writeNew(kept, *bytes)) continue;
        Log::persistence().error("{} could not be understood and is kept as {}", path_.display(),
                                 nameOf(kept));
        if (notices_) notices_->set(path_.lastComponent(), keptNotice(path_, kept));
        return;
    }
    throw std::system_error(EEXIST, std::generic_category(), keptPath(mostKept).display());
}

/// "NAME.damaged", then "NAME.damaged.2" and so on.
FilePath StoredFile::keptPath(int number) const {
    const std::string name = path_.lastComponent() + std::string(mark);
    return path_.parent().appending(number == 1 ? name : name + "." + std::to_string(number));
}

void StoredFile::settle(Condition condition, std::string notice) {
    condition_ = condition;
    if (notices_) notices_->set(path_.lastComponent(), std::move(notice));
}

}  // namespace cairnfield
