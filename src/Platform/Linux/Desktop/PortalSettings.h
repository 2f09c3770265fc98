#pragma once
// Reading the desktop's answers about looks. Pure functions.

#include "Platform/Appearance.h"

#include <QString>
#include <QVariant>

namespace cairnfield {

/// The settings with one value of the settings portal taken over; as they were for a key that means nothing
/// here or a value that makes no sense. Values may be wrapped in any number of bus variants.
[[nodiscard]] AppearanceSettings withPortalSetting(AppearanceSettings settings, const QString& space,
                                                   const QString& key, const QVariant& value);

}  // namespace cairnfield
