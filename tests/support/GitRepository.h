#pragma once
// Real repositories, made step by step with real git. A value names one working directory: a main worktree, a
// linked one or a bare repository; copies name the same. Every step throws std::runtime_error with git's own
// words when it fails, so a script that ends has done what it says. Blocks; for tests, the demo and
// benchmarks.
//
//     const GitRepository main = GitRepository::create(home / "project");
//     main.commitFile("readme.txt");
//     const GitRepository feature = main.addWorktree(home / "project-feature", "feature");
//     feature.write("notes.txt");

#include "Models/Git.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

class GitRepository {
public:
    /// An empty repository with the unborn branch "main".
    static GitRepository create(const FilePath& path);
    static GitRepository createBare(const FilePath& path);
    /// What is there already.
    static GitRepository at(const FilePath& path) { return GitRepository(path); }

    [[nodiscard]] const FilePath& path() const { return path_; }
    [[nodiscard]] FilePath operator/(std::string_view relative) const { return path_.appending(relative); }

    /// Any command in this directory, and its output without the newline at the end.
    std::string git(const std::vector<std::string>& arguments) const;
    /// For commands that stop half-way by design. True when it ended well.
    [[nodiscard]] bool tryGit(const std::vector<std::string>& arguments) const;

    // Files and commits.
    void write(std::string_view relative, std::string_view content = "content\n") const;
    /// Takes this many bytes on disk, and not only in its length.
    void writeLarge(std::string_view relative, std::int64_t bytes) const;
    /// Through the repository's private list, so that no file of the worktree changes.
    void ignore(std::string_view pattern) const;
    /// Stages everything and commits it; gives the commit.
    std::string commit(std::string_view message) const;
    std::string commitFile(std::string_view relative, std::string_view content = "content\n") const;
    [[nodiscard]] std::string head() const;

    // Worktrees.
    /// On a new branch that starts at HEAD.
    [[nodiscard]] GitRepository addWorktree(const FilePath& path, const std::string& branch) const;
    [[nodiscard]] GitRepository addDetachedWorktree(const FilePath& path) const;
    void lock(std::string_view reason = {}) const;

    // Remotes. None of these names a machine.
    [[nodiscard]] GitRepository cloneTo(const FilePath& path) const;
    void addRemote(const std::string& name, const FilePath& repository) const;
    /// Pushes the present branch and makes the remote's branch its upstream.
    void publish(const std::string& remote = "origin") const;
    /// From now on the remote has this URL. What was fetched from it stays.
    void pretendRemoteIsAt(const std::string& url, const std::string& remote = "origin") const;

    // Awkward states.
    /// A merge that stops at a conflict in "conflict.txt".
    void stopAtConflict() const;
    /// An unfinished operation without conflicts. Needs at least one commit.
    void stopIn(GitOperationInProgress operation) const;
    /// The older machinery of rebase keeps its state in another place.
    void stopInRebaseByPatches() const;
    void addSubmodule(const GitRepository& source, const std::string& relative) const;

    /// The worktree looks as if nobody had touched it since.
    void setLastTouched(Date date) const;

private:
    explicit GitRepository(FilePath path) : path_(std::move(path)) {}

    void commitConflictOn(const std::string& otherBranch) const;

    FilePath path_;
};

}  // namespace cairnfield
