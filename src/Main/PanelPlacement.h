#pragma once
// Where the panel opens. Pure functions.

#include "Platform/StatusItem.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <vector>

namespace cairnfield {

struct PanelScreen {
    QRect whole;   ///< its corner in pixels of the display, its size in units of the program
    QRect usable;  ///< without the desktop's own panels
    double scale = 1;
};

/// The point in units of the program; absent when it is on no screen.
[[nodiscard]] std::optional<QPoint> programPoint(ScreenPoint point, const std::vector<PanelScreen>& screens);

/// The corner of a panel of this size at the point: above a point in the lower half of its screen and below
/// one in the upper half, centered on it as far as there is room. Absent when the point is on no screen.
[[nodiscard]] std::optional<QPoint> panelCorner(QPoint point, QSize size,
                                                const std::vector<PanelScreen>& screens);

}  // namespace cairnfield
