#pragma once
// The Git services as the program composes them, with real children, real files and a size scanner that a
// test can steer.

#include "Platform/Linux/LinuxChildProcess.h"
#include "Services/Git/GitWorktreeInspector.h"
#include "Services/Git/WorktreeCatalog.h"
#include "Services/Process/ExecutableLocator.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/FakeDirectoryScanner.h"
#include "support/GitRepository.h"
#include "support/RecordingProcessRunner.h"

#include <string_view>
#include <vector>

namespace cairnfield {

/// The real time and something more: an hour, unless a test says otherwise, so that what a script has just
/// made does not count as in use.
class LaterClock final : public WallClock {
public:
    std::chrono::seconds ahead = std::chrono::hours(1);

    [[nodiscard]] Date now() const override { return std::chrono::system_clock::now() + ahead; }
};

class GitServices {
public:
    GitServices();

    /// The record of one worktree, as a refresh of its repository would make it.
    Worktree inspect(const GitRepository& worktree, WorktreeInspectionOptions options = {});
    /// The verdict's raw value, which is easier to read in a failure than a number.
    std::string_view verdictOn(const GitRepository& worktree);

    std::vector<Worktree> refresh(std::vector<FilePath> roots, WorktreeCatalog::RefreshOptions options = {});
    std::vector<FilePath> discover(std::vector<FilePath> roots, int maxDepth = 4);

private:
    Reactor reactor_;

public:
    ThreadPool pool{2};

private:
    ThreadPool blocking_{1};
    LinuxChildProcessStarter starter_{reactor_};
    ReactorClock continuousClock_{reactor_};
    SystemProcessRunner processes_{starter_, continuousClock_, pool};

public:
    LaterClock clock;
    FakeDirectoryScanner scanner;
    RecordingProcessRunner commands{processes_};
    GitCommandRunner git;
    FileSystemActivityDetector detector{clock};
    GitWorktreeInspector inspector;
    WorktreeCatalog catalog;
};

/// Gives the item and everything in it to the user without rights, so that scripts can work there in their
/// name.
void giveToUnprivilegedUser(const FilePath& item);

/// The record of this worktree among others. Fails the test, and gives an empty record, when there is none.
[[nodiscard]] Worktree recordOf(const std::vector<Worktree>& worktrees, const FilePath& path);

}  // namespace cairnfield
