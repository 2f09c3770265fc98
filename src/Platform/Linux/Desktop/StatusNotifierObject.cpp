#include "Platform/Linux/Desktop/StatusNotifierObject.h"

#include <QMetaObject>

#include <utility>

namespace cairnfield {

void StatusNotifierObject::set(const StatusItemState& state) {
    const StatusItemState before = std::exchange(state_, state);
    if (before.title != state.title) emit NewTitle();
    if (before.symbolName != state.symbolName || before.accessibilityValue != state.accessibilityValue) {
        emit NewIcon();
        emit NewAttentionIcon();
        emit NewToolTip();
    }
    if (before.needsAttention != state.needsAttention) emit NewStatus(status());
}

QString StatusNotifierObject::status() const {
    return state_.needsAttention ? QStringLiteral("NeedsAttention") : QStringLiteral("Active");
}

QString StatusNotifierObject::iconName() const {
    const std::string_view name = themeIconName(state_.symbolName);
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

StatusToolTip StatusNotifierObject::toolTip() const {
    return {iconName(), iconPixmap(), description(), QString()};
}

void StatusNotifierObject::Activate(int x, int y) {
    // The corner is what hosts send that know no place.
    const bool isPlace = x != 0 || y != 0;
    StatusItemActivation activation{isPlace ? std::optional(ScreenPoint{x, y}) : std::nullopt,
                                    std::exchange(token_, {})};
    if (!observer_) return;
    QMetaObject::invokeMethod(
        this, [observer = observer_, activation = std::move(activation)] { observer(activation); },
        Qt::QueuedConnection);
}

void StatusNotifierObject::ContextMenu(int x, int y) {
    Activate(x, y);
}

void StatusNotifierObject::SecondaryActivate(int, int) {}

void StatusNotifierObject::Scroll(int, const QString&) {}

void StatusNotifierObject::ProvideXdgActivationToken(const QString& token) {
    token_ = token.toStdString();
}

}  // namespace cairnfield
