#include "Services/Updates/AppVersion.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(AppVersion, IsWhatTheBundleSays) {
    const BundleInformation bundle({{"CFBundleShortVersionString", "1.2.3"}, {"CFBundleVersion", "77"}});
    EXPECT_EQ(AppVersion::shortVersion(bundle), "1.2.3");
    EXPECT_EQ(AppVersion::build(bundle), "77");
}

TEST(AppVersion, IsZeroWhenTheBundleDoesNotSay) {
    EXPECT_EQ(AppVersion::shortVersion(BundleInformation()), "0.0.0");
    EXPECT_EQ(AppVersion::build(BundleInformation()), std::nullopt);
}

TEST(BundleInformation, OfThisProgramHasAVersionAndNothingToUpdateFrom) {
    const BundleInformation bundle = BundleInformation::ofThisProgram();
    EXPECT_TRUE(AppVersion::shortVersion(bundle).find('.') != std::string::npos);
    EXPECT_NE(AppVersion::shortVersion(bundle), "0.0.0");
    EXPECT_EQ(bundle.text("SUFeedURL"), std::nullopt);
    EXPECT_EQ(bundle.text("SUPublicEDKey"), std::nullopt);
}

TEST(BundleInformation, TakesOnlyTextForText) {
    const BundleInformation bundle({{"number", std::int64_t{7}}, {"flag", true}, {"empty", std::string()}});
    EXPECT_EQ(bundle.text("number"), std::nullopt);
    EXPECT_EQ(bundle.text("flag"), std::nullopt);
    EXPECT_EQ(bundle.text("empty"), "");
}

}  // namespace
}  // namespace cairnfield
