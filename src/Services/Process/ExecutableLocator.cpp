#include "Services/Process/ExecutableLocator.h"

#include "Services/Process/BlockingCommand.h"
#include "Services/Process/CommandEnvironment.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <fcntl.h>
#include <filesystem>
#include <span>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::string_view gitPlaces[] = {"/usr/bin/git", "/opt/homebrew/bin/git", "/usr/local/bin/git"};

// The last three are where distributions, snap and brew put it on Linux.
constexpr std::string_view gitHubCLIPlaces[] = {"/opt/homebrew/bin/gh", "/usr/local/bin/gh",
                                                "/opt/local/bin/gh",    "/usr/bin/gh",
                                                "/snap/bin/gh",         "/home/linuxbrew/.linuxbrew/bin/gh"};

constexpr std::string_view xcrun = "/usr/bin/xcrun";

bool isExecutable(const FilePath& path) {
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

/// Commands run in directories of their own, where a relative path would name something else.
std::optional<FilePath> executableAt(const FilePath& path) {
    if (!isExecutable(path)) return std::nullopt;
    if (path.isAbsolute()) return path;
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path.bytes(), error);
    if (error) return std::nullopt;
    return FilePath(absolute.native());
}

std::optional<FilePath> overridden(const std::optional<std::string>& choice) {
    if (!choice) return std::nullopt;
    return executableAt(FilePath(*choice));
}

std::optional<FilePath> firstExecutable(std::span<const std::string_view> places, const FilePath& root) {
    for (const std::string_view place : places) {
        if (std::optional<FilePath> found = executableAt(root.appending(place.substr(1)))) return found;
    }
    return std::nullopt;
}

}  // namespace

ExecutableLocator::ExecutableLocator(std::optional<std::string> gitOverride,
                                     std::optional<std::string> gitHubCLIOverride, FilePath root)
    : gitOverride_(std::move(gitOverride)),
      gitHubCLIOverride_(std::move(gitHubCLIOverride)),
      root_(std::move(root)) {}

FilePath ExecutableLocator::locateGit() const {
    if (std::optional<FilePath> chosen = overridden(gitOverride_)) return *std::move(chosen);
    if (std::optional<FilePath> found = firstExecutable(gitPlaces, root_)) return *std::move(found);
    if (std::optional<FilePath> found = xcrunFind("git")) return *std::move(found);
    throw CairnfieldError(CairnfieldError::GitNotInstalled{});
}

FilePath ExecutableLocator::locateGitHubCLI() const {
    if (std::optional<FilePath> chosen = overridden(gitHubCLIOverride_)) return *std::move(chosen);
    if (std::optional<FilePath> found = firstExecutable(gitHubCLIPlaces, root_)) return *std::move(found);
    throw CairnfieldError(CairnfieldError::GitHubCLINotInstalled{});
}

std::optional<FilePath> ExecutableLocator::xcrunFind(std::string_view name) const {
    const std::optional<FilePath> finder = executableAt(root_.appending(xcrun.substr(1)));
    if (!finder) return std::nullopt;
    const std::optional<std::string> output =
        outputOfBlockingCommand(*finder, {"--find", std::string(name)}, CommandEnvironment::noninteractive());
    if (!output) return std::nullopt;
    const std::string text = repairedUTF8(*output);
    return executableAt(FilePath(std::string(trimmed(text))));
}

}  // namespace cairnfield
