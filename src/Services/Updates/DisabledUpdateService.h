#pragma once

#include "Services/Updates/UpdateChecking.h"

#include <cstdint>

namespace cairnfield {

/// For a build without updates: keeps what is written to its two switches, does nothing else with them, and
/// says why.
class DisabledUpdateService final : public UpdateChecking {
public:
    [[nodiscard]] bool canCheckForUpdates() const override { return false; }
    [[nodiscard]] bool automaticallyChecksForUpdates() const override { return checks_; }
    void setAutomaticallyChecksForUpdates(bool isOn) override;
    [[nodiscard]] bool automaticallyDownloadsUpdates() const override { return downloads_; }
    void setAutomaticallyDownloadsUpdates(bool isOn) override;
    [[nodiscard]] std::optional<Date> lastUpdateCheckDate() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> feedURLString() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> configurationProblem() const override;
    void checkForUpdates() override {}
    [[nodiscard]] Subscription observe(std::function<void()> observer) const override;

private:
    bool checks_ = false;
    bool downloads_ = false;
    Published<std::uint64_t> changes_{0};
};

}  // namespace cairnfield
