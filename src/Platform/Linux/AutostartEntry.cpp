#include "Platform/Linux/AutostartEntry.h"

#include "Platform/Linux/DesktopEntry.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Files/AtomicFile.h"
#include "Shared/Files/Files.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <limits.h>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

namespace {

[[noreturn]] void fail(int code, const FilePath& path) {
    throw std::system_error(code, std::generic_category(), path.display());
}

bool isOn(const DesktopEntry& entry, std::string_view key) {
    const std::string value = entry.value(key).value_or("");
    return value == "true" || value == "1";
}

bool isOff(const DesktopEntry& entry, std::string_view key) {
    const std::string value = entry.value(key).value_or("");
    return value == "false" || value == "0";
}

bool isExecutable(const std::string& path, struct stat& status) {
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

bool isExecutable(const std::string& path) {
    struct stat status{};
    return isExecutable(path, status);
}

/// The same file may have several paths.
bool isSameProgram(const std::string& one, const std::string& other) {
    struct stat first{};
    struct stat second{};
    return isExecutable(one, first) && isExecutable(other, second) && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool startsProgram(const DesktopEntry& entry, const FilePath& program) {
    if (entry.value("Type") != "Application") return false;
    const std::string required = entry.value("TryExec").value_or("");
    if (required.starts_with('/') && !isExecutable(required)) return false;
    const std::optional<std::string> started = programOfExecLine(entry.value("Exec").value_or(""));
    return started && started->starts_with('/') && isSameProgram(*started, program.bytes());
}

/// What cannot be read holds nothing that could be kept.
std::string textToKeep(const FilePath& file) {
    try {
        return readFile(file).value_or("");
    } catch (const std::system_error& failure) {
        Log::app().warn("Replacing {}, which cannot be read: {}", visibleText(file.lastComponent()),
                        visibleText(describe(failure)));
        return {};
    }
}

}  // namespace

AutostartEntry::AutostartEntry(const FilePath& configHome, FilePath program)
    : file_(configHome.appending("autostart/com.cairnfield.app.desktop")), program_(std::move(program)) {}

LoginItemStatus AutostartEntry::status() const {
    std::optional<std::string> text;
    try {
        text = readFile(file_);
    } catch (const std::system_error& failure) {
        Log::app().error("Could not read {}: {}", visibleText(file_.lastComponent()),
                         visibleText(describe(failure)));
        return LoginItemStatus::notFound;
    }
    if (!text) return LoginItemStatus::notRegistered;
    const DesktopEntry entry(*text);
    if (isOn(entry, "Hidden") || isOff(entry, "X-GNOME-Autostart-enabled"))
        return LoginItemStatus::requiresApproval;
    return startsProgram(entry, program_) ? LoginItemStatus::enabled : LoginItemStatus::notFound;
}

void AutostartEntry::registerItem() {
    if (!isValidUTF8(program_.bytes())) fail(EILSEQ, program_);
    DesktopEntry entry(textToKeep(file_));
    entry.set("Type", "Application");
    entry.set("Name", "Cairnfield");
    entry.set("Icon", "com.cairnfield.app");
    entry.set("Exec", execLine(program_, "--at-login"));
    entry.set("Terminal", "false");
    for (const char* key : {"Hidden", "X-GNOME-Autostart-enabled", "TryExec"}) entry.remove(key);

    ensureDirectory(file_.parent());
    AtomicFile::removeLeftovers(file_);
    AtomicFile::write(file_, entry.text());
}

void AutostartEntry::unregisterItem() {
    if (unlink(file_.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) fail(errno, file_);
}

FilePath runningProgram() {
    const FilePath link("/proc/self/exe");
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    if (length < 0) fail(errno, link);
    return FilePath(std::string(path.data(), static_cast<std::size_t>(length)));
}

}  // namespace cairnfield
