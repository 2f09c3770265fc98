#include "Shared/Components/Contrast.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(Contrast, RunsFromOneToTwentyOne) {
    EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(contrastRatio(QColor("#777777"), QColor("#777777")), 1, 0.001);
    EXPECT_NEAR(contrastRatio(QColor("#767676"), Qt::white), 4.54, 0.01);
    EXPECT_EQ(contrastRatio(Qt::white, QColor("#767676")), contrastRatio(QColor("#767676"), Qt::white));
}

TEST(Contrast, LeavesAReadableColourAlone) {
    EXPECT_EQ(readableOn(QColor("#2462C6"), {Qt::white}), QColor("#2462C6"));
}

TEST(Contrast, DarkensOnLightAndLightensOnDarkNoMoreThanNeeded) {
    const QColor pale("#7FB2FF");
    const QColor onWhite = readableOn(pale, {Qt::white});
    EXPECT_GE(contrastRatio(onWhite, Qt::white), readableContrast);
    EXPECT_LT(contrastRatio(onWhite, Qt::white), readableContrast + 0.2);
    EXPECT_LT(onWhite.lightnessF(), pale.lightnessF());

    const QColor deep("#1A3E80");
    const QColor onBlack = readableOn(deep, {Qt::black});
    EXPECT_GE(contrastRatio(onBlack, Qt::black), readableContrast);
    EXPECT_GT(onBlack.lightnessF(), deep.lightnessF());
    EXPECT_NEAR(onBlack.hslHueF(), deep.hslHueF(), 0.02);
}

TEST(Contrast, FallsBackToTheBetterOfBlackAndWhiteWhenNoShadeServes) {
    EXPECT_EQ(readableOn(QColor("#FF0000"), {QColor("#303030"), QColor("#A0A0A0")}), QColor(Qt::white));
    EXPECT_EQ(readableOn(QColor("#FF0000"), {QColor("#404040"), QColor("#C0C0C0")}), QColor(Qt::black));
}

TEST(Contrast, KeepsATintReadableOnItself) {
    const QColor tint = readableOn(QColor("#7FB2FF"), {QColor("#34343A")}, 0.12);
    EXPECT_GE(contrastRatio(tint, mix(tint, QColor("#34343A"), 0.12)), readableContrast);
}

TEST(Contrast, TakesWhiteTextOnDarkFillsAndNearBlackOnLightOnes) {
    EXPECT_EQ(textColorOn(QColor("#2160CE")), QColor(Qt::white));
    const QColor onPale = textColorOn(QColor("#85B2F6"));
    EXPECT_GE(contrastRatio(onPale, QColor("#85B2F6")), readableContrast);
    EXPECT_LT(onPale.lightnessF(), 0.2);
}

TEST(Contrast, MixesByOpacity) {
    EXPECT_EQ(mix(Qt::black, Qt::white, 0), QColor(Qt::white));
    EXPECT_EQ(mix(Qt::black, Qt::white, 1), QColor(Qt::black));
    EXPECT_EQ(mix(Qt::black, Qt::white, 0.5), QColor(128, 128, 128));
}

}  // namespace
}  // namespace cairnfield
