#include "App/AppModel.h"
#include "App/CleanupServices.h"
#include "Services/Cleanup/ReviewLook.h"
#include "Services/Notifications/Notification.h"
#include "Services/Notifications/NotificationCatalogue.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <utility>

namespace cairnfield {

namespace {

/// Counts a cleanup for as long as it lives, and tells those who wait for the last one.
class UnderWay {
public:
    UnderWay(CleanupServices& services, Published<int>& count) : services_(services), count_(count) {
        services_.cleanupBegins();
        count_.set(services_.underWay());
    }
    ~UnderWay() {
        services_.cleanupEnded();
        count_.set(services_.underWay());
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

private:
    CleanupServices& services_;
    Published<int>& count_;
};

}  // namespace

CleanupPlan AppModel::makePlan(const Worktree& worktree) const {
    const bool isSignedIn = !state_.githubStatus.get().authenticatedHosts.empty();
    return CleanupPlan::makeDefault(
        worktree, {.recoveryBranchPrefix = settings_.recoveryBranchPrefix.get(),
                   .createDraftPullRequests = isSignedIn && settings_.createDraftPullRequests.get(),
                   .preserveSmallLocalFiles = settings_.preserveSmallLocalFiles.get(),
                   .maxVaultFileBytes = settings_.recoveryVaultMaxFileBytes.get(),
                   .retentionDays = settings_.recoveryVaultRetentionDays.get(),
                   .now = environment_.wallClock.now()});
}

Task<CleanupPreflightReport> AppModel::preflight(Worktree worktree) {
    const std::shared_ptr<CleanupServices::Crew> crew = cleanup_->crew();
    if (!crew)
        co_return CleanupPreflightReport::failed(
            state_.gitStatusMessage.get().value_or("Git is unavailable."));
    const bool requiresRemote = makePlan(worktree).requiresPreservation();
    co_return co_await crew->coordinator.preflight(std::move(worktree), requiresRemote);
}

Task<ReviewLook> AppModel::lookForReview(Worktree worktree, std::stop_token abandoned) {
    std::stop_source either;
    const auto stop = [&either] { either.request_stop(); };
    const std::stop_token ending = co_await currentStopToken();
    const std::stop_callback whenAbandoned(std::move(abandoned), stop);
    const std::stop_callback whenEnding(ending, stop);
    const auto look = [&] {
        return cairnfield::lookForReview(worktree, cleanup_->maximumVaultFileBytes, either.get_token());
    };
    ReviewLook found = co_await runOn(environment_.blocking, look);
    co_return found;
}

Task<std::optional<CleanupReceipt>> AppModel::execute(CleanupPlan plan) {
    const std::shared_ptr<CleanupServices::Crew> crew = cleanup_->crew();
    if (!crew) co_return std::nullopt;
    const UnderWay underWay(*cleanup_, state_.cleanupsUnderWay);
    const CleanupProgress preparing{CleanupStage::preparing, std::nullopt};
    if (environment_.cleanupReported) environment_.cleanupReported(preparing);
    state_.activeCleanup.set(preparing);
    const FilePath worktree = plan.worktree.id();
    CleanupReceipt receipt =
        co_await crew->coordinator.execute(std::move(plan), [this](CleanupProgress progress) {
            if (environment_.cleanupReported) environment_.cleanupReported(progress);
            operations_.add(environment_.mainThread, show(std::move(progress)));
        });
    state_.lastReceipt.set(receipt);
    co_await reloadCleanupRecords();
    state_.activeCleanup.set(std::nullopt);
    co_await scanner_.invalidate(worktree);
    co_await refreshStorage();
    co_await refreshWorktrees(false);
    if (settings_.notificationsEnabled.get()) {
        NotificationRequestPayload payload = NotificationCatalogue::cleanupEnded(receipt);
        co_await deliver(std::move(payload));
    }
    co_return receipt;
}

Task<> AppModel::show(CleanupProgress progress) {
    state_.activeCleanup.set(std::move(progress));
    co_return;
}

Task<> AppModel::reloadCleanupRecords() {
    std::vector<CleanupReceipt> receipts = co_await cleanup_->receipts.all();
    state_.receipts.set(std::move(receipts));
    std::vector<RecoveryVaultEntry> entries = co_await cleanup_->vault.entries();
    state_.vaultEntries.set(std::move(entries));
}

Task<std::optional<std::string>> AppModel::removeVaultEntry(RecoveryVaultEntry entry) {
    std::optional<std::string> note;
    try {
        const std::optional<FilePath> staying = co_await cleanup_->vault.remove(std::move(entry));
        if (staying)
            note = "The entry is gone. The file that it named stays, since it is none of the vault's: " +
                   staying->display();
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        Log::cleanup().error("Deleting a vault file failed: {}", describe(error));
    }
    std::vector<RecoveryVaultEntry> entries = co_await cleanup_->vault.entries();
    state_.vaultEntries.set(std::move(entries));
    co_return note;
}

Task<> AppModel::restoreVaultEntry(RecoveryVaultEntry entry, FilePath destination) {
    co_await cleanup_->vault.restore(std::move(entry), std::move(destination));
}

}  // namespace cairnfield
