#pragma once
// Updates that the test allows or not; it counts the checks.

#include "Services/Updates/UpdateChecking.h"

namespace cairnfield {

class FakeUpdates final : public UpdateChecking {
public:
    Published<bool> canCheck{false};
    int checks = 0;

    [[nodiscard]] bool canCheckForUpdates() const override { return canCheck.get(); }
    [[nodiscard]] bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override {}
    [[nodiscard]] bool automaticallyDownloadsUpdates() const override { return false; }
    void setAutomaticallyDownloadsUpdates(bool) override {}
    [[nodiscard]] std::optional<Date> lastUpdateCheckDate() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> feedURLString() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> configurationProblem() const override { return std::nullopt; }
    void checkForUpdates() override { ++checks; }
    [[nodiscard]] Subscription observe(std::function<void()> observer) const override {
        return canCheck.observe(std::move(observer));
    }
};

}  // namespace cairnfield
