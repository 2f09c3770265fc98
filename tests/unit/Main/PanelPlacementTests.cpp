#include "Main/PanelPlacement.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr QSize size(320, 400);
const PanelScreen barBelow{QRect(0, 0, 1600, 1000), QRect(0, 0, 1600, 960), 1};
const PanelScreen barAbove{QRect(0, 0, 1600, 1000), QRect(0, 32, 1600, 968), 1};
const PanelScreen doubled{QRect(1600, 0, 1000, 800), QRect(1600, 0, 1000, 800), 2};

TEST(PanelPlacement, OpensAboveABarAtTheBottom) {
    EXPECT_EQ(panelCorner(QPoint(800, 980), size, {barBelow}), QPoint(640, 560));
}

TEST(PanelPlacement, OpensBelowABarAtTheTop) {
    EXPECT_EQ(panelCorner(QPoint(800, 16), size, {barAbove}), QPoint(640, 32));
}

TEST(PanelPlacement, StaysOnItsScreen) {
    EXPECT_EQ(panelCorner(QPoint(1590, 980), size, {barBelow}), QPoint(1280, 560));
    EXPECT_EQ(panelCorner(QPoint(5, 16), size, {barAbove}), QPoint(0, 32));
    EXPECT_EQ(panelCorner(QPoint(1610, 10), size, {barBelow, doubled}), QPoint(1600, 14));
}

TEST(PanelPlacement, KeepsTheTopInViewWhenTheScreenIsTooSmall) {
    EXPECT_EQ(panelCorner(QPoint(100, 190), size, {{QRect(0, 0, 200, 200), QRect(0, 0, 200, 180), 1}}),
              QPoint(0, 0));
}

TEST(PanelPlacement, KnowsNoPlaceOffTheScreens) {
    EXPECT_EQ(panelCorner(QPoint(5000, 10), size, {barBelow}), std::nullopt);
    EXPECT_EQ(programPoint({-1, 10}, {barBelow}), std::nullopt);
    EXPECT_EQ(programPoint({10, 10}, {}), std::nullopt);
}

TEST(PanelPlacement, ReadsPixelsOfTheDisplayInUnitsOfTheProgram) {
    EXPECT_EQ(programPoint({800, 980}, {barBelow, doubled}), QPoint(800, 980));
    EXPECT_EQ(programPoint({1600 + 1900, 1580}, {barBelow, doubled}), QPoint(1600 + 950, 790));
}

}  // namespace
}  // namespace cairnfield
