#pragma once

#include "Services/Permissions/LaunchAtLoginManaging.h"

#include <memory>

namespace cairnfield {

/// For wherever the desktop must not be touched. Copies share one value; nothing fails.
class InMemoryLaunchAtLoginService final : public LaunchAtLoginManaging {
public:
    [[nodiscard]] bool isEnabled() const override { return box_->value; }
    void setEnabled(bool enabled) override { box_->value = enabled; }

private:
    struct Box {
        bool value = false;
    };
    std::shared_ptr<Box> box_ = std::make_shared<Box>();
};

}  // namespace cairnfield
