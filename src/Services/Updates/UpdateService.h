#pragma once
// Guards the updater: an update that could not be verified must never run, so the updater is not even started
// unless the build carries both the address of a feed ("SUFeedURL") and the key that its updates are signed
// with ("SUPublicEDKey"). Empty text counts as none. Main thread only; a misconfigured build answers with
// configurationProblem() and does nothing.

#include "Services/Updates/BundleInformation.h"
#include "Services/Updates/UpdateChecking.h"
#include "Services/Updates/Updater.h"
#include "Shared/Concurrency/Executor.h"

#include <cstdint>
#include <memory>

namespace cairnfield {

class UpdateService final : public UpdateChecking {
public:
    /// `updater` and `mainThread` outlive this.
    UpdateService(Updater& updater, BundleInformation bundle, Executor& mainThread);
    ~UpdateService() override;

    /// False until the updater has said otherwise.
    [[nodiscard]] bool canCheckForUpdates() const override;
    [[nodiscard]] bool automaticallyChecksForUpdates() const override;
    void setAutomaticallyChecksForUpdates(bool isOn) override;
    [[nodiscard]] bool automaticallyDownloadsUpdates() const override;
    void setAutomaticallyDownloadsUpdates(bool isOn) override;
    [[nodiscard]] std::optional<Date> lastUpdateCheckDate() const override;
    [[nodiscard]] std::optional<std::string> feedURLString() const override;
    [[nodiscard]] std::optional<std::string> configurationProblem() const override;
    void checkForUpdates() override;
    [[nodiscard]] Subscription observe(std::function<void()> observer) const override;

private:
    struct State;
    struct Hop;

    [[nodiscard]] std::optional<std::string> publicKey() const;
    [[nodiscard]] bool isConfigured() const;
    void changed();

    Updater& updater_;
    const BundleInformation bundle_;
    const std::shared_ptr<State> state_;  ///< what the updater says arrives here, or nowhere once we are gone
};

}  // namespace cairnfield
