#include "Platform/Linux/Desktop/StatusNotifierMenu.h"

#include "Platform/Linux/Desktop/StatusPictures.h"

#include <QGuiApplication>
#include <QMetaObject>

#include <algorithm>

namespace cairnfield {

namespace {

constexpr int root = 0;

QVariantMap only(QVariantMap all, const QStringList& wanted) {
    if (wanted.isEmpty()) return all;
    all.removeIf([&wanted](const std::pair<const QString&, QVariant&>& property) {
        return !wanted.contains(property.first);
    });
    return all;
}

bool looksTheSame(const StatusMenuItem& left, const StatusMenuItem& right) {
    return left.title == right.title && left.symbolName == right.symbolName && !left.action == !right.action;
}

}  // namespace

void StatusNotifierMenu::set(std::vector<StatusMenuItem> items) {
    const bool isTheSame = std::ranges::equal(items, entries_, looksTheSame, {}, &Entry::item);
    std::map<std::string, int> ids;
    std::vector<Entry> entries;
    int separators = 0;
    for (StatusMenuItem& item : items) {
        const std::string key = item.action ? item.title : '\n' + std::to_string(separators++);
        const auto known = ids_.find(key);
        const int id = known == ids_.end() ? ++lastId_ : known->second;
        ids.emplace(key, id);
        entries.push_back({id, std::move(item)});
    }
    ids_ = std::move(ids);
    entries_ = std::move(entries);
    if (!isTheSame) emit LayoutUpdated(++revision_, root);
}

QString StatusNotifierMenu::textDirection() const {
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

const StatusNotifierMenu::Entry* StatusNotifierMenu::find(int id) const {
    const auto entry = std::ranges::find(entries_, id, &Entry::id);
    return entry == entries_.end() ? nullptr : &*entry;
}

QVariantMap StatusNotifierMenu::properties(const Entry& entry) const {
    if (!entry.item.action) return {{QStringLiteral("type"), QStringLiteral("separator")}};
    // An underscore would mark the next letter as the key for this entry.
    const QString label =
        QString::fromStdString(entry.item.title).replace(QLatin1Char('_'), QLatin1String("__"));
    QVariantMap all{{QStringLiteral("label"), label},
                    {QStringLiteral("enabled"), true},
                    {QStringLiteral("visible"), true}};
    const std::string_view icon = themeIconName(entry.item.symbolName);
    if (!icon.empty())
        all.insert(QStringLiteral("icon-name"),
                   QString::fromUtf8(icon.data(), static_cast<qsizetype>(icon.size())));
    const QByteArray picture = picture_(entry.item.symbolName);
    if (!picture.isEmpty()) all.insert(QStringLiteral("icon-data"), picture);
    return all;
}

QVariantMap StatusNotifierMenu::properties(int id, const QStringList& wanted) const {
    if (id == root) return only({{QStringLiteral("children-display"), QStringLiteral("submenu")}}, wanted);
    const Entry* const entry = find(id);
    return entry ? only(properties(*entry), wanted) : QVariantMap{};
}

uint StatusNotifierMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                   MenuLayout& layout) {
    layout.id = parentId;
    layout.properties = properties(parentId, propertyNames);
    if (parentId != root || recursionDepth == 0) return revision_;
    for (const Entry& entry : entries_) {
        const MenuLayout child{entry.id, properties(entry.id, propertyNames), {}};
        layout.children.push_back(QDBusVariant(QVariant::fromValue(child)));
    }
    return revision_;
}

QList<MenuItemProperties> StatusNotifierMenu::GetGroupProperties(const QList<int>& ids,
                                                                 const QStringList& propertyNames) {
    QList<MenuItemProperties> all;
    if (ids.isEmpty()) {
        for (const Entry& entry : entries_) all.push_back({entry.id, properties(entry.id, propertyNames)});
        return all;
    }
    for (const int id : ids) {
        if (id == root || find(id)) all.push_back({id, properties(id, propertyNames)});
    }
    return all;
}

QDBusVariant StatusNotifierMenu::GetProperty(int id, const QString& name) {
    const QVariant value = properties(id, {}).value(name);
    return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void StatusNotifierMenu::Event(int id, const QString& kind, const QDBusVariant&, uint) {
    if (kind != QLatin1String("clicked")) return;
    const Entry* const entry = find(id);
    if (!entry || !entry->item.action) return;
    // Not within the call: the action may take the menu down, and the host waits for an answer.
    QMetaObject::invokeMethod(this, entry->item.action, Qt::QueuedConnection);
}

QList<int> StatusNotifierMenu::EventGroup(const QList<MenuEvent>& events) {
    QList<int> unknown;
    for (const MenuEvent& event : events) {
        if (event.id != root && !find(event.id)) unknown.push_back(event.id);
        Event(event.id, event.kind, event.data, event.time);
    }
    return unknown;
}

bool StatusNotifierMenu::AboutToShow(int) {
    return false;
}

QList<int> StatusNotifierMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& unknown) {
    for (const int id : ids) {
        if (id != root && !find(id)) unknown.push_back(id);
    }
    return {};
}

}  // namespace cairnfield
