#pragma once
// The compound values that status items and their menus send over the bus. Plain data, any thread.

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace cairnfield {

/// Four bytes a pixel: alpha, red, green, blue, not premultiplied.
struct StatusPixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;

    friend bool operator==(const StatusPixmap&, const StatusPixmap&) = default;
};

struct StatusToolTip {
    QString iconName;
    QList<StatusPixmap> icon;
    QString title;
    QString text;  ///< hosts take it for markup

    friend bool operator==(const StatusToolTip&, const StatusToolTip&) = default;
};

/// One entry of a menu with what lies below it, each as a MenuLayout.
struct MenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children;
};

struct MenuItemProperties {
    int id = 0;
    QVariantMap properties;
};

struct MenuItemPropertyNames {
    int id = 0;
    QStringList names;
};

struct MenuEvent {
    int id = 0;
    QString kind;
    QDBusVariant data;
    uint time = 0;
};

QDBusArgument& operator<<(QDBusArgument& out, const StatusPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& in, StatusPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& out, const StatusToolTip& tip);
const QDBusArgument& operator>>(const QDBusArgument& in, StatusToolTip& tip);
QDBusArgument& operator<<(QDBusArgument& out, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& out, const MenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& out, const MenuItemPropertyNames& item);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuItemPropertyNames& item);
QDBusArgument& operator<<(QDBusArgument& out, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuEvent& event);

/// Makes the bus know them. Before anything of them is sent or received; once more does no harm.
void registerStatusNotifierTypes();

}  // namespace cairnfield

Q_DECLARE_METATYPE(cairnfield::StatusPixmap)
Q_DECLARE_METATYPE(cairnfield::StatusToolTip)
Q_DECLARE_METATYPE(cairnfield::MenuLayout)
Q_DECLARE_METATYPE(cairnfield::MenuItemProperties)
Q_DECLARE_METATYPE(cairnfield::MenuItemPropertyNames)
Q_DECLARE_METATYPE(cairnfield::MenuEvent)
