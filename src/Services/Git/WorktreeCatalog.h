#pragma once
// Which repositories and worktrees there are under the watched folders, asked of git anew at every call. An
// actor: one caller at a time inside, and so at most one git process for each catalog. Keeps no results.
// Never throws: a repository that cannot be read leaves no trace, a worktree that cannot be read stays with
// the verdict `inaccessible`.

#include "Models/Worktree.h"
#include "Services/Git/GitCommandRunner.h"
#include "Services/Git/RepositoryDiscovering.h"
#include "Services/Git/WorktreeInspecting.h"
#include "Services/GitHub/GitHubServicing.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/Semaphore.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

class WorktreeCatalog final : public Actor {
public:
    struct RefreshOptions {
        int maxDepth = 4;  ///< levels below a root
        bool includeSizes = false;
        std::set<FilePath> pinnedPaths;  ///< standardized
    };

    /// A worktree counts as active when it was touched within this many seconds.
    static constexpr double activityWindow = 900;

    WorktreeCatalog(Executor& pool, std::unique_ptr<RepositoryDiscovering> discovery,
                    std::unique_ptr<WorktreeInspecting> inspector, GitCommandRunner git);

    /// In words for a person; absent when git is new enough, and when it does not say which it is. git is
    /// asked once.
    Task<std::optional<std::string>> whyGitIsTooOld();

    /// Sorted by repository name, then main first, then the largest. When the calling task is cancelled, the
    /// repository at hand is finished (with questions unanswered) and what was gathered comes back.
    Task<std::vector<Worktree>> refresh(std::vector<FilePath> roots, RefreshOptions options);

    /// The same worktrees with the pull request of each branch that has a remote gh can ask, and the verdict
    /// made anew. A worktree about which gh fails stays as it was. `github` is the caller's, until the end of
    /// the await.
    Task<std::vector<Worktree>> attachPullRequests(std::vector<Worktree> worktrees, GitHubServicing& github);

private:
    /// One directory for each repository, whatever number of its worktrees was found.
    Task<std::vector<FilePath>> findRepositories(std::vector<FilePath> roots, int maxDepth);
    /// Appends the repository's worktrees to a list that the caller owns; a repository that git does not list
    /// adds none.
    Task<> inspectRepository(FilePath repository, RefreshOptions options, std::vector<Worktree>& worktrees);
    Task<> attachPullRequest(Worktree& worktree, GitHubServicing& github);

    std::unique_ptr<RepositoryDiscovering> discovery_;
    std::unique_ptr<WorktreeInspecting> inspector_;
    GitCommandRunner git_;
    std::optional<std::string> version_;  ///< what git said of it; empty when it said nothing
    Semaphore turn_{1};                   ///< a second refresh waits for the first, also across suspensions
};

}  // namespace cairnfield
