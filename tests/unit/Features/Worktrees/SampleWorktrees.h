#pragma once
// Worktrees as a refresh would bring them, told by what matters to a test.

#include "Models/Worktree.h"

#include <chrono>
#include <string>

namespace cairnfield {

inline constexpr Date sampleNow = Date(std::chrono::seconds(1'800'000'000));

struct Sample {
    std::string repository = "atlas";
    std::string branch = "main";
    std::int64_t size = 0;
    WorktreeSafety safety = WorktreeSafety::cleanDisposable;
    bool isMain = false;
    bool isPinned = false;
};

/// A worktree at /code/{repository}/{branch} of the repository /code/{repository}.
inline Worktree worktree(const Sample& sample) {
    Worktree worktree;
    worktree.repositoryRoot = FilePath("/code/" + sample.repository);
    worktree.path = worktree.repositoryRoot.appending(sample.branch);
    worktree.repositoryName = sample.repository;
    worktree.branch = sample.branch;
    worktree.headSHA = "0123456789abcdef0123456789abcdef01234567";
    worktree.sizeBytes = sample.size;
    worktree.safety = sample.safety;
    worktree.isMain = sample.isMain;
    worktree.isPinned = sample.isPinned;
    worktree.lastActivity = sampleNow - std::chrono::minutes(5);
    worktree.source = WorktreeSource::generic;
    return worktree;
}

}  // namespace cairnfield
