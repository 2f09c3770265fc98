#include "Services/Cleanup/PathsThatStay.h"

#include "Shared/Paths/PathContainment.h"

#include <system_error>
#include <utility>

namespace cairnfield {

namespace {

int hexadecimalValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string percentDecoded(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexadecimalValue(text[i + 1]) : -1;
        const int low = high >= 0 ? hexadecimalValue(text[i + 2]) : -1;
        if (low < 0) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return plain;
}

struct Place {
    std::string what;
    FilePath path;
};

/// Where a folder of ours will come to be, when it is not there yet.
FilePath nearestThatExists(FilePath folder) {
    while (!resolvedPath(folder) && folder.parent() != folder && !folder.parent().isEmpty())
        folder = folder.parent();
    return folder;
}

std::vector<Place> placesThatStay(const Worktree& worktree, const WorktreeGitFiles& files,
                                  const std::vector<FilePath>& ours) {
    std::vector<Place> places{{"The repository lies inside it.", worktree.repositoryRoot},
                              {"The repository's Git directory lies inside it.", files.common},
                              {"Its own Git directory lies inside it.", files.own}};
    for (const FilePath& other : otherWorktrees(files))
        places.push_back({"Another worktree lies inside it: " + other.display() + ".", other});
    for (const FilePath& objects : alternateObjects(files))
        places.push_back({"Objects of the repository lie inside it.", objects});
    for (const FilePath& folder : ours)
        places.push_back({"Cairnfield's own files lie inside it.", nearestThatExists(folder)});
    for (const GitRemote& remote : worktree.remotes) {
        for (const std::string& url : {remote.fetchURL, remote.pushURL}) {
            const std::optional<FilePath> place = placeOfRemote(url, worktree.path);
            if (place)
                places.push_back(
                    {"The remote " + FilePath(remote.name).display() + " lies inside it.", *place});
        }
    }
    return places;
}

/// A path that cannot be followed, such as one through a folder of somebody else's, counts by its text.
std::optional<FilePath> whereItIs(const FilePath& path) {
    try {
        return resolvedPath(path);
    } catch (const std::system_error&) {
        return path.standardized();
    }
}

}  // namespace

std::optional<FilePath> placeOfRemote(const std::string& url, const FilePath& worktree) {
    constexpr std::string_view fileScheme = "file://";
    if (url.empty()) return std::nullopt;
    if (url.starts_with(fileScheme)) {
        const std::size_t path = url.find('/', fileScheme.size());
        if (path == std::string::npos) return std::nullopt;
        return FilePath(percentDecoded(std::string_view(url).substr(path)));
    }
    if (url.front() == '/') return FilePath(url);
    // git takes what has a colon before its first slash for a machine or a scheme.
    const std::size_t colon = url.find(':');
    if (colon != std::string::npos && colon < url.find('/')) return std::nullopt;
    return worktree.appending(url);
}

std::optional<std::string> whatMustStayInside(const Worktree& worktree, const WorktreeGitFiles& files,
                                              const std::vector<FilePath>& ours) {
    const std::optional<FilePath> folder = resolvedPath(worktree.path);
    if (!folder) return std::nullopt;
    for (Place& place : placesThatStay(worktree, files, ours)) {
        const std::optional<FilePath> resolved = whereItIs(place.path);
        if (resolved && isAtOrBelow(*resolved, *folder)) return std::move(place.what);
    }
    return std::nullopt;
}

}  // namespace cairnfield
