#pragma once
// A status item whose desktop the test is.

#include "Platform/StatusItem.h"

#include <utility>

namespace cairnfield {

class FakeStatusItem final : public StatusItem {
public:
    void setState(StatusItemState given) override { state = std::move(given); }
    void setMenu(std::vector<StatusMenuItem> items) override { menu = std::move(items); }
    void onActivate(std::function<void(StatusItemActivation)> observer) override {
        activated = std::move(observer);
    }
    [[nodiscard]] bool hasHost() const override { return hasHost_; }
    void onHostChange(std::function<void()> observer) override { hostObserver_ = std::move(observer); }

    /// A host comes or goes.
    void setHost(bool hasHost) {
        if (std::exchange(hasHost_, hasHost) != hasHost && hostObserver_) hostObserver_();
    }

    StatusItemState state;
    std::vector<StatusMenuItem> menu;
    std::function<void(StatusItemActivation)> activated;

private:
    bool hasHost_ = false;
    std::function<void()> hostObserver_;
};

}  // namespace cairnfield
