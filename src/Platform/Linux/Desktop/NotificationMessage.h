#pragma once
// A notification in the words of the desktop's notification interface. Pure functions.

#include "Platform/NotificationCenter.h"

#include <QDBusArgument>
#include <QImage>
#include <QStringList>
#include <QVariantList>

#include <vector>

namespace cairnfield {

/// What a notification service says that it can do; absent things are not sent to it.
struct NotificationCapabilities {
    bool hasActions = false;
    bool rendersMarkup = false;  ///< of the body; the title is plain everywhere
    bool playsSound = false;
    bool showsImages = false;

    [[nodiscard]] static NotificationCapabilities named(const QStringList& names);

    friend bool operator==(const NotificationCapabilities&, const NotificationCapabilities&) = default;
};

/// A picture as it travels over the bus.
struct NotificationImage {
    int width = 0;
    int height = 0;
    int rowStride = 0;  ///< bytes from one row to the next
    QByteArray pixels;  ///< red, green, blue and alpha of 8 bits each

    /// Empty for an empty picture.
    [[nodiscard]] static NotificationImage from(const QImage& picture);
    [[nodiscard]] bool isEmpty() const { return pixels.isEmpty(); }
};

QDBusArgument& operator<<(QDBusArgument& argument, const NotificationImage& image);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotificationImage& image);

/// The text for a service that renders markup, so that it appears as it is.
[[nodiscard]] QString escapedMarkup(const QString& text);

/// The arguments of "Notify". `replaced` is the number of the notification whose place it takes, 0 for none.
[[nodiscard]] QVariantList notifyArguments(const NotificationRequest& request,
                                           const std::vector<NotificationButton>& buttons,
                                           const NotificationCapabilities& capabilities,
                                           const NotificationImage& image, uint replaced);

}  // namespace cairnfield
