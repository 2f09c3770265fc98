#include "GitServices.h"

#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace cairnfield {

GitServices::GitServices()
    : git(commands, ExecutableLocator(std::nullopt, std::nullopt).locateGit()),
      inspector(git, scanner, detector),
      catalog(pool, std::make_unique<RepositoryDiscoveryService>(blocking_),
              std::make_unique<GitWorktreeInspector>(git, scanner, detector), git) {}

Worktree GitServices::inspect(const GitRepository& worktree, WorktreeInspectionOptions options) {
    const std::vector<GitWorktreeEntry> entries = waitFor(pool, inspector.listWorktrees(worktree.path()));
    const auto entry = std::ranges::find(entries, worktree.path(), &GitWorktreeEntry::path);
    if (entry == entries.end()) {
        ADD_FAILURE() << "git does not list " << worktree.path().display();
        return {};
    }
    commands.take();
    return waitFor(pool, inspector.inspect(*entry, entries.front().path, std::move(options)));
}

std::string_view GitServices::verdictOn(const GitRepository& worktree) {
    return rawValue(inspect(worktree).safety);
}

std::vector<Worktree> GitServices::refresh(std::vector<FilePath> roots,
                                           WorktreeCatalog::RefreshOptions options) {
    return waitFor(pool, catalog.refresh(std::move(roots), std::move(options)));
}

std::vector<FilePath> GitServices::discover(std::vector<FilePath> roots, int maxDepth) {
    RepositoryDiscoveryService service(blocking_);
    return waitFor(pool, service.discoverRepositories(std::move(roots), maxDepth));
}

void giveToUnprivilegedUser(const FilePath& item) {
    constexpr uid_t nobody = 65534;
    if (geteuid() != 0) return;
    const std::filesystem::path root = item.bytes();
    EXPECT_EQ(lchown(root.c_str(), nobody, nobody), 0) << root;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        EXPECT_EQ(lchown(entry.path().c_str(), nobody, nobody), 0) << entry.path();
    }
}

Worktree recordOf(const std::vector<Worktree>& worktrees, const FilePath& path) {
    const auto found = std::ranges::find(worktrees, path, &Worktree::path);
    if (found != worktrees.end()) return *found;
    ADD_FAILURE() << "no record of " << path.display();
    return {};
}

}  // namespace cairnfield
