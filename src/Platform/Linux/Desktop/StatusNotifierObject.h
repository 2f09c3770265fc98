#pragma once
// The status item as hosts see it, over org.kde.StatusNotifierItem: its properties, what can be asked of it
// and what it tells. Main thread only.

#include "Platform/Linux/Desktop/StatusNotifierTypes.h"
#include "Platform/Linux/Desktop/StatusPictures.h"
#include "Platform/StatusItem.h"

#include <QDBusObjectPath>
#include <QObject>

#include <functional>
#include <optional>

namespace cairnfield {

class StatusNotifierObject final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ empty)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<cairnfield::StatusPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ description)
    Q_PROPERTY(QString OverlayIconName READ empty)
    Q_PROPERTY(QList<cairnfield::StatusPixmap> OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ iconName)
    Q_PROPERTY(QList<cairnfield::StatusPixmap> AttentionIconPixmap READ iconPixmap)
    Q_PROPERTY(QString AttentionAccessibleDesc READ description)
    Q_PROPERTY(QString AttentionMovieName READ empty)
    Q_PROPERTY(cairnfield::StatusToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    /// `pictures` outlive this.
    explicit StatusNotifierObject(StatusPictures& pictures) : pictures_(pictures) {}

    /// Tells the hosts what differs.
    void set(const StatusItemState& state);
    void onActivate(std::function<void(StatusItemActivation)> observer) { observer_ = std::move(observer); }

    [[nodiscard]] static QString objectPath() { return QStringLiteral("/StatusNotifierItem"); }
    [[nodiscard]] static QString menuPath() { return QStringLiteral("/StatusNotifierItem/Menu"); }

    [[nodiscard]] QString category() const { return QStringLiteral("SystemServices"); }
    [[nodiscard]] QString id() const { return QStringLiteral("com.cairnfield.app"); }
    [[nodiscard]] QString title() const { return QString::fromStdString(state_.title); }
    [[nodiscard]] QString status() const;
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString empty() const { return {}; }
    [[nodiscard]] QString iconName() const;
    [[nodiscard]] QList<StatusPixmap> iconPixmap() const { return pictures_.pixmaps(state_.symbolName); }
    [[nodiscard]] QList<StatusPixmap> noPixmap() const { return {}; }
    [[nodiscard]] QString description() const { return QString::fromStdString(state_.accessibilityValue); }
    [[nodiscard]] StatusToolTip toolTip() const;
    /// A press is ours to answer; the menu is for hosts that offer nothing else, and for the other button.
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] QDBusObjectPath menu() const { return QDBusObjectPath(menuPath()); }

public slots:
    // NOLINTBEGIN(readability-identifier-naming): the names are those of the bus interface
    void Activate(int x, int y);
    /// From hosts that cannot draw the menu themselves: what opens has the same actions.
    void ContextMenu(int x, int y);
    void SecondaryActivate(int x, int y);
    void Scroll(int delta, const QString& orientation);
    /// Comes before the press that it belongs to.
    void ProvideXdgActivationToken(const QString& token);

signals:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    // NOLINTEND(readability-identifier-naming)

private:
    StatusPictures& pictures_;
    StatusItemState state_;
    std::function<void(StatusItemActivation)> observer_;
    std::string token_;
};

}  // namespace cairnfield
