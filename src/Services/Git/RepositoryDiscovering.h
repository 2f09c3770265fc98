#pragma once
// Finding repositories under folders: a plain walk of directories with a depth limit. Does not run git.

#include "Shared/Concurrency/Executor.h"
#include "Shared/Concurrency/Task.h"
#include "Shared/Paths/FilePath.h"

#include <vector>

namespace cairnfield {

class RepositoryDiscovering {
public:
    virtual ~RepositoryDiscovering() = default;

    /// Every directory that holds a ".git", at most `maxDepth` levels below a root, each standardized path
    /// once and in the order found. Never enters a repository, a hidden directory, a link or a directory of
    /// known build output. Cannot fail: what cannot be listed is passed over.
    virtual Task<std::vector<FilePath>> discoverRepositories(std::vector<FilePath> roots, int maxDepth) = 0;
};

/// Walks on `blocking`, so that a slow disk holds up neither the main thread nor an actor.
class RepositoryDiscoveryService final : public RepositoryDiscovering {
public:
    explicit RepositoryDiscoveryService(Executor& blocking) : blocking_(blocking) {}
    Task<std::vector<FilePath>> discoverRepositories(std::vector<FilePath> roots, int maxDepth) override;

private:
    Executor& blocking_;
};

}  // namespace cairnfield
