#pragma once
// The inspector that asks git: a fixed series of read-only questions, one after the other, then a few small
// files, the size scanner and the activity detector. Keeps no state, so that any number of inspections may
// run at once; each has at most one git process. Runs on the caller's executor; the files it looks at itself
// are few and small.

#include "Services/FileSystem/DirectoryScanning.h"
#include "Services/Git/ActivityDetecting.h"
#include "Services/Git/GitCommandRunner.h"
#include "Services/Git/WorktreeInspecting.h"

namespace cairnfield {

class GitWorktreeInspector final : public WorktreeInspecting {
public:
    /// `scanner` and `activityDetector` outlive every inspection.
    GitWorktreeInspector(GitCommandRunner git, DirectoryScanning& scanner,
                         ActivityDetecting& activityDetector)
        : git_(std::move(git)), scanner_(scanner), activityDetector_(activityDetector) {}

    Task<std::vector<GitWorktreeEntry>> listWorktrees(FilePath repositoryRoot) override;
    Task<Worktree> inspect(GitWorktreeEntry entry, FilePath repositoryRoot,
                           WorktreeInspectionOptions options) override;

private:
    // Each fills its fields of a record that the caller owns and keeps alive.
    Task<> readGitDirectories(Worktree& worktree);
    Task<> readStatus(Worktree& worktree, bool includeIgnoredEntries);
    Task<> readSubmodules(Worktree& worktree);
    Task<> readIgnoredEntries(Worktree& worktree);
    Task<> readSize(Worktree& worktree, bool includeSize);
    Task<> readActivity(Worktree& worktree, double window);

    Task<std::int64_t> sizeOfIgnored(FilePath item, bool isDirectory, IgnoredEntryClass classification);

    GitCommandRunner git_;
    DirectoryScanning& scanner_;
    ActivityDetecting& activityDetector_;
};

/// The commit that an entry of the worktree list names. The list gives an unborn branch one of nothing but
/// zeros; here it has none.
[[nodiscard]] std::optional<std::string> commitOf(const GitWorktreeEntry& entry);

/// The unfinished operation that the files of a worktree's own Git directory tell of.
[[nodiscard]] std::optional<GitOperationInProgress> operationInProgress(const FilePath& gitDirectory);

}  // namespace cairnfield
