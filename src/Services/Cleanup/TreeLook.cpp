#include "Services/Cleanup/TreeLook.h"

#include "Shared/Concurrency/FileDescriptor.h"

#include <linux/stat.h>
#include <sys/stat.h>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;
using Facts = struct statx;

/// Absent when there is nothing of that name any more.
std::optional<Facts> factsOf(int folder, const char* name) {
    Facts facts{};
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
    const unsigned wanted = STATX_TYPE | STATX_MODE | STATX_UID | STATX_CTIME;
    if (statx(folder, name, flags, wanted, &facts) == 0) return facts;
    if (errno == ENOENT) return std::nullopt;
    throw std::system_error(errno, std::generic_category(), FilePath(name).display());
}

bool isFolder(const Facts& facts) {
    return S_ISDIR(facts.stx_mode);
}

bool isOnSameFileSystem(const Facts& some, const Facts& other) {
    return some.stx_dev_major == other.stx_dev_major && some.stx_dev_minor == other.stx_dev_minor;
}

/// Whether its attributes keep even its owner from deleting it, or anything in it.
bool isProtected(const Facts& facts) {
    return (facts.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0;
}

/// In a folder with the sticky bit each deletes but what is theirs.
bool keepsFor(const Facts& folder, const Facts& item) {
    const uid_t user = geteuid();
    return (folder.stx_mode & S_ISVTX) != 0 && user != 0 && folder.stx_uid != user && item.stx_uid != user;
}

class Walk {
public:
    explicit Walk(const TreeLookQuestion& question) : question_(question) {}

    TreeLook run() {
        lookAtRoot();
        return std::move(look_);
    }

private:
    /// What one folder's names tell together.
    struct Names {
        bool any = false;
        bool head = false;
        bool objects = false;
        bool references = false;

        void add(std::string_view name) {
            any = true;
            head = head || name == "HEAD";
            objects = objects || name == "objects";
            references = references || name == "refs";
        }
        [[nodiscard]] bool areThoseOfARepository() const { return head && objects && references; }
    };

    void object(std::string what) {
        if (!look_.objection) look_.objection = std::move(what);
    }
    static std::string shown(const std::string& relative) {
        return relative.empty() ? "Its folder" : FilePath(relative).display();
    }

    void lookAtRoot() {
        const FilePath parent = question_.root.standardized().parent();
        const FileDescriptor outside(open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        const std::string name = question_.root.standardized().lastComponent();
        if (!outside) throw std::system_error(errno, std::generic_category(), parent.display());
        const std::optional<Facts> folder = factsOf(outside.get(), ".");
        const std::optional<Facts> root = factsOf(outside.get(), name.c_str());
        if (!folder || !root) throw std::system_error(ENOENT, std::generic_category(), parent.display());
        root_ = *root;
        const bool isKept = keepsFor(*folder, *root) || isProtected(*folder) || isProtected(*root) ||
                            faccessat(outside.get(), ".", W_OK | X_OK, AT_EACCESS) != 0;
        if (isKept) return object("Its folder cannot be deleted.");
        enter(outside.get(), name.c_str(), "", *root);
    }

    void enter(int parent, const char* name, const std::string& relative, const Facts& folder) {
        Directory directory = opened(parent, name, relative);
        if (!directory) return;
        const int descriptor = dirfd(directory.get());
        Names names;
        while (const dirent* entry = readdir(directory.get())) {
            const std::string_view entryName = entry->d_name;
            if (entryName == "." || entryName == "..") continue;
            names.add(entryName);
            visit(descriptor, entry->d_name, relative, folder);
            if (look_.objection) return;
        }
        if (names.areThoseOfARepository() && !question_.trackedHeads.contains(inside(relative, "HEAD")))
            meetRepository({relative, false}, relative);
        if (names.any && faccessat(descriptor, ".", W_OK | X_OK, AT_EACCESS) != 0)
            object(shown(relative) + " cannot be emptied.");
    }

    /// Null with an objection, or when it is gone.
    Directory opened(int parent, const char* name, const std::string& relative) {
        FileDescriptor descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        Directory directory(descriptor ? fdopendir(descriptor.get()) : nullptr, closedir);
        if (directory) {
            (void)descriptor.release();
        } else if (errno != ENOENT) {
            object(shown(relative) + " cannot be looked into.");
        }
        return directory;
    }

    void visit(int folder, const char* name, const std::string& relative, const Facts& folderFacts) {
        const std::optional<Facts> facts = factsOf(folder, name);
        if (!facts) return;
        const bool isDirectory = isFolder(*facts);
        if (isDirectory || !isOnSameFileSystem(*facts, root_) || isProtected(*facts) ||
            keepsFor(folderFacts, *facts) || std::string_view(name) == ".git") {
            visitUnusual(folder, name, inside(relative, name), *facts, folderFacts);
            return;
        }
        lookAtFile(name, inside(relative, name), *facts);
    }

    void lookAtFile(const char* name, const std::string& path, const Facts& facts) {
        if (changedInTheSecondOfTheIndex(facts)) look_.changedInTheSecondOfTheIndex.insert(path);
        const bool hasContent = S_ISREG(facts.stx_mode) || S_ISLNK(facts.stx_mode);
        if (question_.accounted && hasContent && !look_.unaccounted)
            look_.unaccounted = question_.accounted->refusalOf(path, name, place_);
    }

    [[nodiscard]] bool changedInTheSecondOfTheIndex(const Facts& facts) const {
        return facts.stx_ctime.tv_sec == question_.indexModified.tv_sec &&
               facts.stx_ctime.tv_nsec > question_.indexModified.tv_nsec;
    }

    /// Everything but the many plain files.
    void visitUnusual(int folder, const char* name, const std::string& path, const Facts& facts,
                      const Facts& folderFacts) {
        if (!isOnSameFileSystem(facts, root_))
            return object("Another file system begins inside it: " + shown(path) + ".");
        if (isProtected(facts) || keepsFor(folderFacts, facts))
            return object(shown(path) + " cannot be deleted.");
        if (std::string_view(name) == ".git" && path != ".git")
            meetRepository({path.substr(0, path.size() - std::string_view("/.git").size()), true}, path);
        if (!isFolder(facts) || look_.objection) return;
        if (question_.submodules.contains(path)) return lookAtSubmodule(folder, name, path);
        const AccountedFiles::Place outside = place_;
        if (question_.accounted) place_ = question_.accounted->placeOf(path, name, outside);
        enter(folder, name, path, facts);
        place_ = outside;
    }

    void meetRepository(InnerRepository repository, const std::string& mark) {
        if (!isBelowRebuildableOutput(repository.path))
            return object("Another repository lies inside it: " + shown(mark) + ".");
        look_.repositoriesInRebuildableOutput.push_back(std::move(repository));
    }

    [[nodiscard]] bool isBelowRebuildableOutput(const std::string& path) const {
        std::size_t slash = path.find('/');
        while (slash != std::string::npos && !question_.rebuildable.contains(path.substr(0, slash)))
            slash = path.find('/', slash + 1);
        return slash != std::string::npos;
    }

    /// One that is populated in the usual way is left to git, which removes no worktree with such a one.
    void lookAtSubmodule(int parent, const char* name, const std::string& relative) {
        const Directory directory = opened(parent, name, relative);
        if (!directory) return;
        const std::optional<Facts> gitFile = factsOf(dirfd(directory.get()), ".git");
        if (gitFile && isFolder(*gitFile))
            return object("Another repository lies inside it: " + shown(relative) + ".");
        if (gitFile) return;
        while (const dirent* entry = readdir(directory.get())) {
            const std::string_view entryName = entry->d_name;
            if (entryName != "." && entryName != "..")
                return object("The submodule " + shown(relative) + " is not initialised and holds files.");
        }
    }

    static std::string inside(const std::string& folder, std::string_view name) {
        return folder.empty() ? std::string(name) : folder + "/" + std::string(name);
    }

    const TreeLookQuestion& question_;
    TreeLook look_;
    Facts root_{};
    AccountedFiles::Place place_;  ///< of the directory that the walk is in
};

}  // namespace

TreeLook lookAtTree(const TreeLookQuestion& question) {
    return Walk(question).run();
}

}  // namespace cairnfield
