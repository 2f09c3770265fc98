#include "Services/Git/WorktreeGitFiles.h"

#include "Shared/Files/Files.h"
#include "Shared/Text/Text.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace cairnfield {

namespace {

std::string_view withoutLineEnd(std::string_view text) {
    while (text.ends_with('\n') || text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

FilePath from(const FilePath& folder, std::string_view path) {
    return path.starts_with('/') ? FilePath(std::string(path)) : folder.appending(path);
}

/// The path that a file of one line names, seen from the folder of that file.
std::optional<FilePath> pathIn(const FilePath& folder, std::string_view name) {
    const std::optional<std::string> content = readFile(folder.appending(name));
    if (!content || withoutLineEnd(*content).empty()) return std::nullopt;
    return from(folder, withoutLineEnd(*content));
}

bool isFolder(const FilePath& path) {
    struct stat status{};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isCommit(std::string_view text) {
    return (text.size() == 40 || text.size() == 64) &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::optional<std::string> packedCommit(const FilePath& common, std::string_view reference) {
    const std::optional<std::string> packed = readFile(common.appending("packed-refs"));
    if (!packed) return std::nullopt;
    for (const std::string_view line : splitDroppingEmpty(*packed, '\n')) {
        const std::size_t blank = line.find(' ');
        if (blank == std::string_view::npos || withoutLineEnd(line.substr(blank + 1)) != reference) continue;
        if (isCommit(line.substr(0, blank))) return std::string(line.substr(0, blank));
    }
    return std::nullopt;
}

}  // namespace

std::optional<FilePath> resolvedPath(const FilePath& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), std::free);
    if (resolved) return FilePath(resolved.get());
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw std::system_error(errno, std::generic_category(), path.display());
}

std::optional<WorktreeGitFiles> gitDirectoriesOf(const FilePath& checkout) {
    constexpr std::string_view mark = "gitdir: ";
    const FilePath gitItem = checkout.appending(".git");
    std::optional<FilePath> own = resolvedPath(gitItem);
    if (own && !isFolder(*own)) {
        const std::optional<std::string> content = readFile(*own);
        if (!content || !content->starts_with(mark)) return std::nullopt;
        own = resolvedPath(from(checkout, withoutLineEnd(std::string_view(*content).substr(mark.size()))));
    }
    if (!own || !isFolder(*own)) return std::nullopt;
    const std::optional<FilePath> shared = pathIn(*own, "commondir");
    if (!shared) return WorktreeGitFiles{*own, *own};
    const std::optional<FilePath> common = resolvedPath(*shared);
    if (!common) return std::nullopt;
    return WorktreeGitFiles{*own, *common};
}

std::optional<FilePath> gitFileNamedBy(const FilePath& ownGitDirectory) {
    return pathIn(ownGitDirectory, "gitdir");
}

std::optional<WorktreeGitFiles> gitFilesOf(const FilePath& worktree) {
    const FilePath gitFile = worktree.appending(".git");
    if (!isFolder(worktree) || isFolder(gitFile)) return std::nullopt;
    const std::optional<WorktreeGitFiles> files = gitDirectoriesOf(worktree);
    if (!files || files->own == files->common || files->own == resolvedPath(gitFile)) return std::nullopt;
    const std::optional<FilePath> back = gitFileNamedBy(files->own);
    if (!back) return std::nullopt;
    const std::optional<FilePath> backAtWorktree = resolvedPath(*back);
    if (!backAtWorktree || backAtWorktree != resolvedPath(gitFile)) return std::nullopt;
    return files;
}

bool keepsReferencesElsewhere(const WorktreeGitFiles& files) {
    return isFolder(files.common.appending("reftable"));
}

bool belongsToOneWorktree(std::string_view reference) {
    return !reference.starts_with("refs/") || reference.starts_with("refs/worktree/") ||
           reference.starts_with("refs/bisect/") || reference.starts_with("refs/rewritten/");
}

HeadOnDisk headOnDisk(const WorktreeGitFiles& files) {
    constexpr std::string_view mark = "ref:";
    constexpr int longestChain = 5;
    using Form = HeadOnDisk::Form;
    if (keepsReferencesElsewhere(files)) return {Form::keptElsewhere, {}};

    std::string reference = "HEAD";
    bool goes = false;
    for (int step = 0; step <= longestChain; ++step) {
        const FilePath& folder = belongsToOneWorktree(reference) ? files.own : files.common;
        const std::optional<std::string> content = readFile(folder.appending(reference));
        if (!content) {
            if (reference == "HEAD") return {Form::unreadable, {}};
            const std::optional<std::string> packed = packedCommit(files.common, reference);
            return packed ? HeadOnDisk{Form::commit, *packed, goes} : HeadOnDisk{Form::unborn, {}};
        }
        const std::string_view value = withoutLineEnd(*content);
        if (isCommit(value)) return {Form::commit, std::string(value), goes};
        if (!value.starts_with(mark)) return {Form::unreadable, {}};
        reference = trimmed(value.substr(mark.size()));
        goes = belongsToOneWorktree(reference);
    }
    return {Form::unreadable, {}};
}

std::vector<FilePath> otherWorktrees(const WorktreeGitFiles& files) {
    std::vector<FilePath> worktrees;
    const std::filesystem::path folder = files.common.appending("worktrees").bytes();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const FilePath directory(entry.path().native());
        if (resolvedPath(directory) == files.own || !isFolder(directory)) continue;
        const std::optional<FilePath> gitFile = pathIn(directory, "gitdir");
        if (gitFile) worktrees.push_back(gitFile->standardized().parent());
    }
    return worktrees;
}

std::vector<FilePath> alternateObjects(const WorktreeGitFiles& files) {
    const FilePath objects = files.common.appending("objects");
    const std::optional<std::string> list = readFile(objects.appending("info/alternates"));
    std::vector<FilePath> alternates;
    if (!list) return alternates;
    for (const std::string_view line : splitDroppingEmpty(*list, '\n')) {
        if (!line.starts_with('#')) alternates.push_back(from(objects, line));
    }
    return alternates;
}

}  // namespace cairnfield
