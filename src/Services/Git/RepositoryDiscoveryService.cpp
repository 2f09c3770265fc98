#include "Services/Git/RepositoryDiscovering.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/RunOn.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <unistd.h>
#include <unordered_set>

namespace cairnfield {

namespace {

using namespace std::string_view_literals;

constexpr std::array skippedDirectoryNames{
    "node_modules"sv, ".build"sv,  "DerivedData"sv,  "Pods"sv,   ".venv"sv, "venv"sv,
    "__pycache__"sv,  ".next"sv,   ".nuxt"sv,        "dist"sv,   "build"sv, "target"sv,
    ".turbo"sv,       "Library"sv, "Applications"sv, ".Trash"sv,
};
static_assert(skippedDirectoryNames.size() == 16);

struct CloseDirectory {
    void operator()(DIR* directory) const noexcept { closedir(directory); }
};
using OpenDirectory = std::unique_ptr<DIR, CloseDirectory>;

OpenDirectory openDirectory(int parent, const char* name, int flags) {
    const int descriptor = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
    if (descriptor < 0) return nullptr;
    OpenDirectory directory(fdopendir(descriptor));
    if (!directory) close(descriptor);
    return directory;
}

/// A directory itself, not a link to one. Most file systems tell with the listing.
bool isDirectory(int parent, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
    struct stat facts{};
    return fstatat(parent, entry.d_name, &facts, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(facts.st_mode);
}

/// One walk below one root. It goes depth first, since then a directory is opened by name on the descriptor
/// of its parent and a descriptor for each level is enough, and keeps what it finds by level: put one after
/// the other, the levels are the order of a walk breadth first.
class RepositoryWalk {
public:
    RepositoryWalk(const FilePath& root, int maxDepth, std::stop_token stop)
        : maxDepth_(maxDepth), stop_(std::move(stop)), path_(root.standardized().bytes()) {}

    std::vector<std::vector<FilePath>> run() {
        if (!path_.empty()) visit(AT_FDCWD, path_.c_str(), 0, 0);
        return std::move(found_);
    }

private:
    void visit(int parent, const char* name, int depth, int openFlags) {
        if (stop_.stop_requested()) return;
        // Asked through the parent, so that at the deepest level nothing needs to be opened.
        scratch_.assign(name).append("/.git");
        struct stat facts{};
        if (fstatat(parent, scratch_.c_str(), &facts, 0) == 0) return record(depth);
        if (depth >= maxDepth_) return;

        const OpenDirectory directory = openDirectory(parent, name, openFlags);
        if (directory) visitChildren(directory.get(), depth + 1);
    }

    void visitChildren(DIR* directory, int depth) {
        const int descriptor = dirfd(directory);
        const std::size_t length = path_.size();
        while (const dirent* entry = readdir(directory)) {
            const std::string_view name = entry->d_name;
            if (name.starts_with('.') || !isDirectory(descriptor, *entry)) continue;
            if (std::ranges::find(skippedDirectoryNames, name) != skippedDirectoryNames.end()) continue;
            if (!path_.ends_with('/')) path_ += '/';
            path_ += name;
            visit(descriptor, entry->d_name, depth, O_NOFOLLOW);
            path_.resize(length);
        }
    }

    void record(int depth) {
        const auto level = static_cast<std::size_t>(depth);
        if (found_.size() <= level) found_.resize(level + 1);
        found_[level].emplace_back(path_);
    }

    const int maxDepth_;
    const std::stop_token stop_;
    std::string path_;     ///< of the directory being visited
    std::string scratch_;  ///< spares an allocation for each directory
    std::vector<std::vector<FilePath>> found_;
};

std::vector<FilePath> discover(const std::vector<FilePath>& roots, int maxDepth,
                               const std::stop_token& stop) {
    std::vector<FilePath> repositories;
    std::unordered_set<FilePath> seen;
    for (const FilePath& root : roots) {
        RepositoryWalk walk(root, maxDepth, stop);
        for (const std::vector<FilePath>& level : walk.run()) {
            for (const FilePath& repository : level) {
                if (seen.insert(repository).second) repositories.push_back(repository);
            }
        }
    }
    return repositories;
}

}  // namespace

Task<std::vector<FilePath>> RepositoryDiscoveryService::discoverRepositories(std::vector<FilePath> roots,
                                                                             int maxDepth) {
    const std::stop_token stop = co_await currentStopToken();
    const auto walk = [roots = std::move(roots), maxDepth, stop] { return discover(roots, maxDepth, stop); };
    std::vector<FilePath> repositories = co_await runOn(blocking_, walk);
    co_return repositories;
}

}  // namespace cairnfield
