#include "Services/Permissions/LaunchAtLoginService.h"

namespace cairnfield {

bool LaunchAtLoginService::isEnabled() const {
    return item_.status() == LoginItemStatus::enabled;
}

void LaunchAtLoginService::setEnabled(bool enabled) {
    if (enabled) {
        item_.registerItem();
    } else {
        item_.unregisterItem();
    }
}

}  // namespace cairnfield
