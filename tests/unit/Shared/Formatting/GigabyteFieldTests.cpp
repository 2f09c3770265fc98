#include "Shared/Formatting/GigabyteField.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <limits>

namespace cairnfield {
namespace {

using namespace GigabyteField;

constexpr std::int64_t gibibyte = 1'073'741'824;

class GigabyteFieldText : public testing::Test {
protected:
    ScopedEnvironment locale{"LC_ALL", "en_US.UTF-8"};
};

TEST_F(GigabyteFieldText, HasOneDigitAfterThePointAtMost) {
    EXPECT_EQ(text(40 * gibibyte), "40");
    EXPECT_EQ(text(gibibyte + gibibyte / 2), "1.5");
    EXPECT_EQ(text(gibibyte + gibibyte / 4), "1.3");
    EXPECT_EQ(text(0), "0");
    EXPECT_EQ(text(2000 * gibibyte), "2,000");
    EXPECT_EQ(text(-gibibyte), "-1");
}

TEST_F(GigabyteFieldText, IsReadBack) {
    EXPECT_EQ(bytesFromText("1.5"), 1'610'612'736);
    EXPECT_EQ(bytesFromText(" 40 "), 40 * gibibyte);
    EXPECT_EQ(bytesFromText("2,000"), 2000 * gibibyte);
    EXPECT_EQ(bytesFromText("2000"), 2000 * gibibyte);
    EXPECT_EQ(bytesFromText("0"), 0);
    EXPECT_EQ(bytesFromText("0.5"), gibibyte / 2);
    EXPECT_EQ(bytesFromText("-2"), -2 * gibibyte) << "the sign is left alone";
}

TEST_F(GigabyteFieldText, IsNothingWhenItIsNoNumberThatFits) {
    for (const char* typed : {"", " ", "x", "5 GB", "1.5.5", "12x", "nan", "1e400", "8589934592",
                              "-8589934592", "99999999999999999999", "\xff", "∞"})
        EXPECT_EQ(bytesFromText(typed), std::nullopt) << typed;
    EXPECT_EQ(bytesFromText("8,589,934,591"), 8'589'934'591 * gibibyte);
}

TEST_F(GigabyteFieldText, SpeaksTheLocaleOfTheMoment) {
    const ScopedEnvironment german("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(text(gibibyte + gibibyte / 2), "1,5");
    EXPECT_EQ(bytesFromText("1,5"), 1'610'612'736);
    EXPECT_EQ(bytesFromText("1.5"), std::nullopt) << "neither one and a half nor fifteen";
    EXPECT_EQ(bytesFromText("2.000"), 2000 * gibibyte);
}

}  // namespace
}  // namespace cairnfield
