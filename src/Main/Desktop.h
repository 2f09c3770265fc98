#pragma once
// What the desktop does for the program, over its buses and in its folders. Main thread only.

#include "Main/Machine.h"
#include "Platform/Linux/AutostartEntry.h"
#include "Platform/Linux/BaseDirectories.h"
#include "Platform/Linux/Desktop/LinuxAppearance.h"
#include "Platform/Linux/Desktop/LinuxNotificationCenter.h"
#include "Platform/Linux/Desktop/LinuxPasteboard.h"
#include "Platform/Linux/Desktop/LinuxWorkspace.h"
#include "Platform/Linux/Desktop/StatusNotifierItem.h"
#include "Services/Notifications/SystemNotificationService.h"
#include "Services/Permissions/LaunchAtLoginService.h"
#include "Services/Updates/DisabledUpdateService.h"

#include <QDBusConnection>

namespace cairnfield {

struct Desktop {
    /// `machine` outlives this.
    Desktop(const QDBusConnection& bus, Machine& machine, const BaseDirectories& directories);

    LinuxAppearance appearance;
    LinuxWorkspace workspace;
    LinuxPasteboard pasteboard;
    StatusNotifierItem statusItem;
    LinuxNotificationCenter notificationCenter;
    SystemNotificationService notifications{notificationCenter};
    AutostartEntry autostart;
    LaunchAtLoginService launchAtLogin{autostart};
    DisabledUpdateService updates;
};

}  // namespace cairnfield
