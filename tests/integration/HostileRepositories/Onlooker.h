#pragma once
// The program as far as looking at repositories goes, with its own surroundings: it finds what is under a
// folder, inspects every worktree and measures each.

#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Services/Process/SafeEnvironment.h"
#include "integration/Services/Git/GitServices.h"
#include "support/SafeSurroundings.h"
#include "support/Waiting.h"

#include <chrono>
#include <list>
#include <optional>

namespace cairnfield {

/// What a command would get if the environment of the program's start were not made safe for git.
inline Environment withoutSafety(Environment environment) {
    const Environment& start = environmentAtStart();
    for (const auto& [name, value] : safeForGit(start)) {
        if (!start.contains(name)) environment.erase(name);
    }
    for (const char* name : {"PATH", "LD_LIBRARY_PATH"}) {
        const std::optional<std::string> value = valueOf(start, name);
        if (value) environment[name] = *value;
    }
    return environment;
}

/// Gives every command less time than it asks for, or an environment that nobody has made safe.
class ImpatientProcessRunner final : public ProcessRunning {
public:
    explicit ImpatientProcessRunner(ProcessRunning& runner) : runner_(runner) {}

    std::optional<std::chrono::nanoseconds> patience;  ///< absent: all the time
    bool isSafe = true;

    Task<CommandResult> run(CommandInvocation invocation) override {
        if (patience) invocation.timeout = std::min(invocation.timeout, *patience);
        if (!isSafe) invocation.environment = withoutSafety(std::move(invocation.environment));
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
                                                                  : std::list<ScopedEnvironment>()) {
        commands.isSafe = surroundings == Surroundings::asAtTheStart;
    }
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
