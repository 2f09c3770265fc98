#pragma once
// The program as far as looking at repositories goes, with its own surroundings: it finds what is under a
// folder, inspects every worktree and measures each.

#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "integration/Services/Git/GitServices.h"
#include "support/SafeSurroundings.h"
#include "support/Waiting.h"

#include <chrono>
#include <list>
#include <optional>

namespace cairnfield {

/// Gives every command less time than it asks for.
class ImpatientProcessRunner final : public ProcessRunning {
public:
    explicit ImpatientProcessRunner(ProcessRunning& runner) : runner_(runner) {}

    std::optional<std::chrono::nanoseconds> patience;  ///< absent: all the time

    Task<CommandResult> run(CommandInvocation invocation) override {
        if (patience) invocation.timeout = std::min(invocation.timeout, *patience);
        return runner_.run(std::move(invocation));
    }

private:
    ProcessRunning& runner_;
};

class Onlooker {
public:
    enum class Surroundings {
        asAtTheStart,
        asTheyCome,  ///< what nobody has made safe
    };

    explicit Onlooker(Surroundings surroundings = Surroundings::asAtTheStart)
        : environment_(surroundings == Surroundings::asAtTheStart ? surroundingsAtTheStart()
                                                                  : std::list<ScopedEnvironment>()) {}
    ~Onlooker() { waitFor(services.pool, scanner.stop()); }

private:
    std::list<ScopedEnvironment> environment_;  // before the threads

public:
    GitServices services;
    ImpatientProcessRunner commands{services.commands};
    GitCommandRunner git{commands, services.git.gitURL()};
    LinuxTreeMeasurer measurer{services.pool, services.clock};
    ThreadPool walking{1};
    DirectorySizeScanner scanner{services.pool, walking, measurer, services.clock};
    GitWorktreeInspector inspector{git, scanner, services.detector};
    WorktreeCatalog catalog{services.pool, std::make_unique<RepositoryDiscoveryService>(walking),
                            std::make_unique<GitWorktreeInspector>(git, scanner, services.detector), git};

    std::vector<Worktree> addFolder(const FilePath& folder) {
        std::vector<Worktree> worktrees = waitFor(services.pool, catalog.refresh({folder}, {}));
        for (const Worktree& worktree : worktrees) {
            try {
                (void)waitFor(services.pool, scanner.size(worktree.path, false));
            } catch (const std::exception&) {
                // One that cannot be measured has no size.
            }
        }
        return worktrees;
    }
};

}  // namespace cairnfield
