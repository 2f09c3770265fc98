#pragma once
// Where the window stood and how large it was, kept from one start to the next. Pure functions.

#include <QRect>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct WindowFrame {
    QRect place;  ///< of the window when it is not maximized
    bool isMaximized = false;

    friend bool operator==(const WindowFrame&, const WindowFrame&) = default;
};

/// "120 80 1080 720 normal": what is stored.
[[nodiscard]] std::string toText(const WindowFrame& frame);
/// Absent for anything that toText does not write.
[[nodiscard]] std::optional<WindowFrame> windowFrameFromText(std::string_view text);

/// The frame made to fit: no smaller than `minimum`, no larger than the screen it is mostly on, and wholly on
/// it. On the first screen when it was on one that is gone. `screens` are the usable areas, at least one.
[[nodiscard]] WindowFrame fitted(WindowFrame frame, QSize minimum, const std::vector<QRect>& screens);

}  // namespace cairnfield
