#include "Main/PanelPlacement.h"

#include <algorithm>

namespace cairnfield {

namespace {

constexpr int gap = 4;

}  // namespace

std::optional<QPoint> programPoint(ScreenPoint point, const std::vector<PanelScreen>& screens) {
    for (const PanelScreen& screen : screens) {
        const QPoint offset = QPoint(point.x, point.y) - screen.whole.topLeft();
        const QPoint inUnits = offset / screen.scale;
        if (offset.x() < 0 || offset.y() < 0 || inUnits.x() >= screen.whole.width() ||
            inUnits.y() >= screen.whole.height())
            continue;
        return screen.whole.topLeft() + inUnits;
    }
    return std::nullopt;
}

std::optional<QPoint> panelCorner(QPoint point, QSize size, const std::vector<PanelScreen>& screens) {
    const auto screen = std::ranges::find_if(
        screens, [point](const PanelScreen& candidate) { return candidate.whole.contains(point); });
    if (screen == screens.end()) return std::nullopt;
    const QRect usable = screen->usable;
    const bool isLow = point.y() > screen->whole.center().y();
    const int x = point.x() - size.width() / 2;
    const int y = isLow ? point.y() - gap - size.height() : point.y() + gap;
    // What does not fit sticks out at the far side, never at the top or the left.
    return QPoint(std::max(usable.left(), std::min(x, usable.right() + 1 - size.width())),
                  std::max(usable.top(), std::min(y, usable.bottom() + 1 - size.height())));
}

}  // namespace cairnfield
