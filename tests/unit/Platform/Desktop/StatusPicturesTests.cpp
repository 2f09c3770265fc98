#include "Platform/Linux/Desktop/StatusPictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;

constexpr const char* levels[] = {"internaldrive", "exclamationmark.triangle", "exclamationmark.octagon"};

/// Black on its left half.
QByteArray half(const std::string& symbolName) {
    if (symbolName != "half") return {};
    return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16"><rect width="8" height="16"/></svg>)";
}

double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax(luminance(one), luminance(other));
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(StatusPictures, HaveANameInTheDesktopsThemeForEachLevel) {
    EXPECT_EQ(themeIconName("internaldrive"), "drive-harddisk-symbolic");
    EXPECT_EQ(themeIconName("exclamationmark.triangle"), "dialog-warning-symbolic");
    EXPECT_EQ(themeIconName("exclamationmark.octagon"), "dialog-error-symbolic");
    EXPECT_EQ(themeIconName("nothing"), "");
}

TEST(StatusPictures, AreLegibleOnLightAndDarkPanels) {
    for (const char* level : levels) {
        EXPECT_THAT(contrast(panelColor(level), QColor("#FFFFFF")), Ge(3.0)) << level;
        EXPECT_THAT(contrast(panelColor(level), QColor("#2A2A2E")), Ge(3.0)) << level;
    }
}

TEST(StatusPictures, TellTheLevelsApartByColourToo) {
    EXPECT_NE(panelColor(levels[0]), panelColor(levels[1]));
    EXPECT_NE(panelColor(levels[1]), panelColor(levels[2]));
}

TEST(StatusPictures, AreDrawnInEverySizeWithAlphaFirst) {
    StatusPictures pictures(half);
    std::vector<int> sizes;
    for (const StatusPixmap& pixmap : pictures.pixmaps("half")) {
        sizes.push_back(pixmap.width);
        const qsizetype row = qsizetype{4} * pixmap.width;
        ASSERT_EQ(pixmap.pixels.size(), row * pixmap.height);
        EXPECT_EQ(pixmap.pixels.first(4), QByteArray::fromHex("ff808087"));
        EXPECT_EQ(pixmap.pixels.mid(row - 4, 4), QByteArray::fromHex("00000000"));
    }
    EXPECT_THAT(sizes, ElementsAre(16, 22, 24, 32, 48));
}

TEST(StatusPictures, AreReadOnceForEachSymbol) {
    int readings = 0;
    StatusPictures pictures([&readings](const std::string& symbolName) {
        ++readings;
        return half(symbolName);
    });
    (void)pictures.pixmaps("half");
    const int first = readings;
    (void)pictures.pixmaps("half");
    EXPECT_EQ(readings, first);
}

TEST(StatusPictures, AreAPNGInMenus) {
    const StatusPictures pictures(half);
    const QImage image = QImage::fromData(pictures.menuPicture("half"), "PNG");
    EXPECT_EQ(image.size(), QSize(16, 16));
    EXPECT_EQ(image.pixelColor(0, 0), panelColor("half"));
}

TEST(StatusPictures, AreMissingForAnUnknownSymbol) {
    StatusPictures pictures(half);
    EXPECT_THAT(pictures.pixmaps("unknown"), IsEmpty());
    EXPECT_EQ(pictures.menuPicture("unknown"), QByteArray());
}

}  // namespace
}  // namespace cairnfield
