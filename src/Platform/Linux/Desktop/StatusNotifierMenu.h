#pragma once
// A menu that the desktop draws, over com.canonical.dbusmenu. Main thread only. Every entry keeps its number
// for as long as its title is in use, and no number is used again: a press on a menu that was drawn before a
// change cannot reach another entry.

#include "Platform/Linux/Desktop/StatusNotifierTypes.h"
#include "Platform/StatusItem.h"

#include <QObject>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace cairnfield {

class StatusNotifierMenu final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    /// Gives the PNG for a symbol.
    using Picture = std::function<QByteArray(const std::string& symbolName)>;

    explicit StatusNotifierMenu(Picture picture) : picture_(std::move(picture)) {}

    /// Tells the host when titles or symbols differ from those before.
    void set(std::vector<StatusMenuItem> items);

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString textDirection() const;
    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public slots:
    // NOLINTBEGIN(readability-identifier-naming): the names are those of the bus interface
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   cairnfield::MenuLayout& layout);
    QList<cairnfield::MenuItemProperties> GetGroupProperties(const QList<int>& ids,
                                                             const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& kind, const QDBusVariant& data, uint time);
    QList<int> EventGroup(const QList<cairnfield::MenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& unknown);

signals:
    void ItemsPropertiesUpdated(const QList<cairnfield::MenuItemProperties>& changed,
                                const QList<cairnfield::MenuItemPropertyNames>& removed);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint time);
    // NOLINTEND(readability-identifier-naming)

private:
    struct Entry {
        int id;
        StatusMenuItem item;
    };

    [[nodiscard]] const Entry* find(int id) const;
    [[nodiscard]] QVariantMap properties(int id, const QStringList& wanted) const;
    [[nodiscard]] QVariantMap properties(const Entry& entry) const;

    const Picture picture_;
    std::vector<Entry> entries_;
    std::map<std::string, int> ids_;  ///< of the titles in use; separators by their place
    int lastId_ = 0;                  ///< 0 is the menu itself
    uint revision_ = 1;
};

}  // namespace cairnfield
