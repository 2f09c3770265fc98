#pragma once
// What the model's cleanups work with: the receipts, the vault, and a coordinator for as long as git is
// usable. Main thread only.
//
// That one repository is cleaned once at a time is the coordinator's to see to, so it is not replaced while
// it works: tools that are found meanwhile are taken when the last cleanup has ended.

#include "App/AppEnvironment.h"
#include "Persistence/CleanupReceiptStore.h"
#include "Services/Cleanup/CleanupCoordinator.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "Services/Git/WorktreeInspecting.h"

#include <memory>
#include <optional>

namespace cairnfield {

class CleanupServices {
public:
    /// A coordinator and what must live as long as it does.
    struct Crew {
        Crew(const CleanupCoordinator::Surroundings& surroundings, CleanupServices& services,
             GitCommandRunner git, std::shared_ptr<GitHubServicing> github,
             std::unique_ptr<WorktreeInspecting> inspector);

        const GitCommandRunner git;
        const std::shared_ptr<GitHubServicing> github;
        const std::unique_ptr<WorktreeInspecting> inspector;
        CleanupCoordinator coordinator;
    };

    /// Every file larger than `maximumFileBytes` stays out of the vault.
    CleanupServices(const AppEnvironment& environment, std::int64_t maximumFileBytes);

    const std::int64_t maximumVaultFileBytes;
    CleanupReceiptStore receipts;
    RecoveryVaultService vault;

    /// Null while git is unusable. Whoever uses it holds it.
    [[nodiscard]] std::shared_ptr<Crew> crew() const { return crew_; }
    /// Null where the tools are gone.
    void replaceCrew(std::shared_ptr<Crew> crew);

    void cleanupBegins() { ++underWay_; }
    void cleanupEnded();
    [[nodiscard]] int underWay() const { return underWay_; }

private:
    std::shared_ptr<Crew> crew_;
    std::optional<std::shared_ptr<Crew>> next_;  ///< waits until nothing is under way
    int underWay_ = 0;
};

}  // namespace cairnfield
