#include "App/CleanupServices.h"

#include <utility>

namespace cairnfield {

CleanupServices::Crew::Crew(const CleanupCoordinator::Surroundings& surroundings, CleanupServices& services,
                            GitCommandRunner gitRunner, std::shared_ptr<GitHubServicing> githubService,
                            std::unique_ptr<WorktreeInspecting> worktreeInspector)
    : git(std::move(gitRunner)),
      github(std::move(githubService)),
      inspector(std::move(worktreeInspector)),
      coordinator(surroundings, git, *github, services.vault, services.receipts, *inspector) {}

// Both wait for the disk within a call; the vault copies and compares whole files.
CleanupServices::CleanupServices(const AppEnvironment& environment, std::int64_t maximumFileBytes)
    : maximumVaultFileBytes(maximumFileBytes),
      receipts(environment.blocking, environment.support),
      vault(environment.blocking, environment.support, environment.volumes, environment.wallClock,
            maximumFileBytes) {}

void CleanupServices::replaceCrew(std::shared_ptr<Crew> crew) {
    if (underWay_ > 0) {
        next_ = std::move(crew);
    } else {
        crew_ = std::move(crew);
    }
}

void CleanupServices::cleanupEnded() {
    --underWay_;
    if (underWay_ == 0 && next_) crew_ = *std::exchange(next_, std::nullopt);
}

}  // namespace cairnfield
