#include "Main/WindowFrame.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

const QSize minimum(760, 520);
const QRect left(0, 0, 1920, 1080);
const QRect right(1920, 0, 1280, 1024);

QRect placed(QRect place, const std::vector<QRect>& screens = {left, right}) {
    return fitted({.place = place}, minimum, screens).place;
}

TEST(WindowFrame, IsReadAsItWasWritten) {
    const WindowFrame frame{.place = QRect(-40, 80, 1080, 720), .isMaximized = true};
    EXPECT_EQ(toText(frame), "-40 80 1080 720 maximized");
    EXPECT_EQ(windowFrameFromText(toText(frame)), frame);
    EXPECT_EQ(windowFrameFromText("1 2 3 4 normal"), (WindowFrame{.place = QRect(1, 2, 3, 4)}));
}

TEST(WindowFrame, IsNotReadFromAnythingElse) {
    for (const char* text :
         {"", "1 2 3 4", "1 2 3 normal", "1 2 3 4 5 normal", "a 2 3 4 normal", "1 2 3 4x normal",
          "1 2 3 4 huge", "99999999999 2 3 4 normal", "2000000 2 3 4 normal"})
        EXPECT_EQ(windowFrameFromText(text), std::nullopt) << text;
}

TEST(WindowFrame, StaysWhereItFits) {
    EXPECT_EQ(placed(QRect(2000, 100, 1000, 700)), QRect(2000, 100, 1000, 700));
}

TEST(WindowFrame, IsBroughtBackOntoItsScreen) {
    EXPECT_EQ(placed(QRect(-300, -50, 1000, 700)), QRect(0, 0, 1000, 700));
    EXPECT_EQ(placed(QRect(1500, 900, 1000, 700)).right() <= right.right(), true);
}

TEST(WindowFrame, ComesToTheFirstScreenWhenItsOwnIsGone) {
    EXPECT_EQ(placed(QRect(5000, 5000, 1000, 700), {left}), QRect(920, 380, 1000, 700));
}

TEST(WindowFrame, IsNeverLargerThanTheScreenNorSmallerThanItsMinimum) {
    EXPECT_EQ(placed(QRect(0, 0, 5000, 5000), {left}).size(), left.size());
    EXPECT_EQ(placed(QRect(0, 0, 10, 10), {left}).size(), minimum);
    EXPECT_EQ(placed(QRect(0, 0, 1000, 700), {QRect(0, 0, 640, 480)}), QRect(QPoint(0, 0), minimum));
}

}  // namespace
}  // namespace cairnfield
