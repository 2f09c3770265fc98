#pragma once

#include "Platform/LoginItem.h"
#include "Services/Permissions/LaunchAtLoginManaging.h"

namespace cairnfield {

/// Asks the desktop and has no state. An item that waits for approval, or whose program is gone, is not
/// enabled. `item` outlives it.
class LaunchAtLoginService final : public LaunchAtLoginManaging {
public:
    explicit LaunchAtLoginService(LoginItem& item) : item_(item) {}

    [[nodiscard]] bool isEnabled() const override;
    void setEnabled(bool enabled) override;

private:
    LoginItem& item_;
};

}  // namespace cairnfield
