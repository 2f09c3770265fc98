#include "Platform/Linux/Desktop/StatusNotifierTypes.h"

#include <QDBusMetaType>

namespace cairnfield {

namespace {

template <class... Fields>
QDBusArgument& write(QDBusArgument& out, const Fields&... fields) {
    out.beginStructure();
    (out << ... << fields);
    out.endStructure();
    return out;
}

template <class... Fields>
const QDBusArgument& read(const QDBusArgument& in, Fields&... fields) {
    in.beginStructure();
    (in >> ... >> fields);
    in.endStructure();
    return in;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& out, const StatusPixmap& pixmap) {
    return write(out, pixmap.width, pixmap.height, pixmap.pixels);
}
const QDBusArgument& operator>>(const QDBusArgument& in, StatusPixmap& pixmap) {
    return read(in, pixmap.width, pixmap.height, pixmap.pixels);
}

QDBusArgument& operator<<(QDBusArgument& out, const StatusToolTip& tip) {
    return write(out, tip.iconName, tip.icon, tip.title, tip.text);
}
const QDBusArgument& operator>>(const QDBusArgument& in, StatusToolTip& tip) {
    return read(in, tip.iconName, tip.icon, tip.title, tip.text);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuLayout& layout) {
    return write(out, layout.id, layout.properties, layout.children);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuLayout& layout) {
    return read(in, layout.id, layout.properties, layout.children);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuItemProperties& item) {
    return write(out, item.id, item.properties);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuItemProperties& item) {
    return read(in, item.id, item.properties);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuItemPropertyNames& item) {
    return write(out, item.id, item.names);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuItemPropertyNames& item) {
    return read(in, item.id, item.names);
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuEvent& event) {
    return write(out, event.id, event.kind, event.data, event.time);
}
const QDBusArgument& operator>>(const QDBusArgument& in, MenuEvent& event) {
    return read(in, event.id, event.kind, event.data, event.time);
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusPixmap>();
    qDBusRegisterMetaType<QList<StatusPixmap>>();
    qDBusRegisterMetaType<StatusToolTip>();
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<QList<QDBusVariant>>();
    qDBusRegisterMetaType<MenuItemProperties>();
    qDBusRegisterMetaType<QList<MenuItemProperties>>();
    qDBusRegisterMetaType<MenuItemPropertyNames>();
    qDBusRegisterMetaType<QList<MenuItemPropertyNames>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<QList<int>>();
}

}  // namespace cairnfield
