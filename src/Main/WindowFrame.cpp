#include "Main/WindowFrame.h"

#include "Shared/Text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace cairnfield {

namespace {

constexpr std::string_view normalWord = "normal";
constexpr std::string_view maximizedWord = "maximized";

qint64 area(const QRect& rect) {
    return rect.isEmpty() ? 0 : qint64{rect.width()} * rect.height();
}

}  // namespace

std::string toText(const WindowFrame& frame) {
    std::string text;
    for (const int number : {frame.place.x(), frame.place.y(), frame.place.width(), frame.place.height()})
        text += std::to_string(number) + ' ';
    return text.append(frame.isMaximized ? maximizedWord : normalWord);
}

std::optional<WindowFrame> windowFrameFromText(std::string_view text) {
    const std::vector<std::string_view> words = splitDroppingEmpty(text, ' ');
    if (words.size() != 5 || (words[4] != normalWord && words[4] != maximizedWord)) return std::nullopt;
    std::array<int, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto [end, error] =
            std::from_chars(words[i].data(), words[i].data() + words[i].size(), numbers.at(i));
        if (error != std::errc{} || end != words[i].data() + words[i].size()) return std::nullopt;
        if (numbers.at(i) < -100'000 || numbers.at(i) > 100'000) return std::nullopt;
    }
    return WindowFrame{QRect(numbers[0], numbers[1], numbers[2], numbers[3]), words[4] == maximizedWord};
}

WindowFrame fitted(WindowFrame frame, QSize minimum, const std::vector<QRect>& screens) {
    const auto overlap = [&frame](const QRect& screen) { return area(screen.intersected(frame.place)); };
    const QRect screen = *std::ranges::max_element(screens, {}, overlap);
    const QSize size = frame.place.size().expandedTo(minimum).boundedTo(screen.size().expandedTo(minimum));
    const int rightmost = std::max(screen.left(), screen.right() + 1 - size.width());
    const int lowest = std::max(screen.top(), screen.bottom() + 1 - size.height());
    const QPoint corner(std::clamp(frame.place.x(), screen.left(), rightmost),
                        std::clamp(frame.place.y(), screen.top(), lowest));
    frame.place = QRect(corner, size);
    return frame;
}

}  // namespace cairnfield
