#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/GigabyteField.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace cairnfield {
namespace {

constexpr std::int64_t mostNegative = std::numeric_limits<std::int64_t>::min();

TEST(ByteFormatting, CountsInDecimalUnits) {
    const std::vector<std::pair<std::int64_t, std::string>> known{{0, "0 kB"},
                                                                  {1, "1 byte"},
                                                                  {512, "512 bytes"},
                                                                  {999, "999 bytes"},
                                                                  {1'000, "1 kB"},
                                                                  {1'500, "2 kB"},
                                                                  {1'499, "1 kB"},
                                                                  {999'499, "999 kB"},
                                                                  {1'500'000, "1.5 MB"},
                                                                  {1'000'000'000, "1 GB"},
                                                                  {1'500'000'000, "1.5 GB"},
                                                                  {12'345'678'901, "12.35 GB"},
                                                                  {10'737'418'240, "10.74 GB"},
                                                                  {2'000'000'000'000, "2 TB"},
                                                                  {3'210'000'000'000'000, "3.21 PB"}};
    for (const auto& [bytes, text] : known) EXPECT_EQ(ByteFormatting::string(bytes), text) << bytes;
}

TEST(ByteFormatting, StepsUpAfterRounding) {
    EXPECT_EQ(ByteFormatting::string(999'500), "1 MB");
    EXPECT_EQ(ByteFormatting::string(999'999), "1 MB");
    EXPECT_EQ(ByteFormatting::string(999'949'999), "999.9 MB");
    EXPECT_EQ(ByteFormatting::string(999'950'000), "1 GB");
    EXPECT_EQ(ByteFormatting::string(999'994'999'999), "999.99 GB");
    EXPECT_EQ(ByteFormatting::string(999'995'000'000), "1 TB");
}

TEST(ByteFormatting, HoldsTheLargestCount) {
    EXPECT_EQ(ByteFormatting::string(std::numeric_limits<std::int64_t>::max()), "9,223.37 PB");
}

TEST(ByteFormatting, ShowsANegativeCountAsZero) {
    EXPECT_EQ(ByteFormatting::string(-1), ByteFormatting::string(0));
    EXPECT_EQ(ByteFormatting::string(mostNegative), ByteFormatting::string(0));
}

TEST(ByteFormatting, MarksEstimates) {
    EXPECT_EQ(ByteFormatting::estimatedString(1'500'000'000), "~1.5 GB");
    EXPECT_EQ(ByteFormatting::estimatedString(-7), "~0 kB");
}

TEST(ByteFormatting, SignsEverythingButZero) {
    EXPECT_EQ(ByteFormatting::signedString(1'500'000'000), "+1.5 GB");
    EXPECT_EQ(ByteFormatting::signedString(-1'500'000'000), "-1.5 GB");
    EXPECT_EQ(ByteFormatting::signedString(0), "0 kB");
    EXPECT_EQ(ByteFormatting::signedString(mostNegative + 1), "-9,223.37 PB");
}

TEST(ByteFormattingDeathTest, StopsAtACountWithoutAMagnitude) {
    EXPECT_DEATH((void)ByteFormatting::signedString(mostNegative), "");
}

TEST(ByteFormatting, ShowsSharesWithAtMostOneDigit) {
    EXPECT_EQ(ByteFormatting::percentString(0.5), "50%");
    EXPECT_EQ(ByteFormatting::percentString(0.125), "12.5%");
    EXPECT_EQ(ByteFormatting::percentString(0.9996), "100%");
    EXPECT_EQ(ByteFormatting::percentString(0.05), "5%");
    EXPECT_EQ(ByteFormatting::percentString(1), "100%");
}

TEST(ByteFormatting, HoldsSharesBetweenNothingAndAll) {
    EXPECT_EQ(ByteFormatting::percentString(1.7), "100%");
    EXPECT_EQ(ByteFormatting::percentString(-0.2), "0%");
    EXPECT_EQ(ByteFormatting::percentString(-0.0), "0%");
    EXPECT_EQ(ByteFormatting::percentString(std::numeric_limits<double>::infinity()), "100%");
    EXPECT_EQ(ByteFormatting::percentString(std::nan("")), "0%");
}

TEST(ByteFormatting, FollowsTheLocaleWhileTheProgramRuns) {
    {
        const ScopedEnvironment german("LC_ALL", "de_DE.UTF-8");
        EXPECT_EQ(ByteFormatting::string(1'500'000'000), "1,5\u00A0GB");
        EXPECT_EQ(ByteFormatting::string(512), "512 Byte");
        EXPECT_EQ(ByteFormatting::percentString(0.125), "12,5\u00A0%");
    }
    EXPECT_EQ(ByteFormatting::string(1'500'000'000), "1.5 GB");
}

TEST(ByteFormatting, LooksAtTheVariablesInTheirOrder) {
    const ScopedEnvironment all("LC_ALL", "");
    const ScopedEnvironment language("LANG", "de_DE.UTF-8");
    const ScopedEnvironment numbers("LC_NUMERIC", std::nullopt);
    EXPECT_EQ(ByteFormatting::string(1'500'000'000), "1,5\u00A0GB");
    const ScopedEnvironment english("LC_NUMERIC", "en_GB.UTF-8");
    EXPECT_EQ(ByteFormatting::string(1'500'000'000), "1.5 GB");
}

TEST(ByteFormatting, SpeaksEnglishInTheCLocaleAndWithoutAny) {
    for (const char* locale : {"C", "POSIX", "C.UTF-8"}) {
        const ScopedEnvironment c("LC_ALL", locale);
        EXPECT_EQ(ByteFormatting::string(12'345'678'901), "12.35 GB") << locale;
    }
    const ScopedEnvironment all("LC_ALL", std::nullopt);
    const ScopedEnvironment numbers("LC_NUMERIC", std::nullopt);
    const ScopedEnvironment language("LANG", std::nullopt);
    EXPECT_EQ(ByteFormatting::string(12'345'678'901), "12.35 GB");
}

TEST(ByteFormatting, SurvivesALocaleThatNobodyKnows) {
    const ScopedEnvironment unknown("LC_ALL", "xx_YY.UTF-8@nowhere");
    EXPECT_NE(ByteFormatting::string(1'500'000'000).find("GB"), std::string::npos);
}

TEST(GigabyteField, CountsInBinaryUnits) {
    EXPECT_EQ(GigabyteField::bytesFromValue(1.5), 1'610'612'736);
    EXPECT_DOUBLE_EQ(GigabyteField::valueFromBytes(1'610'612'736), 1.5);
    EXPECT_EQ(ByteFormatting::string(GigabyteField::bytesFromValue(10)), "10.74 GB");
}

TEST(GigabyteField, LeavesTheSignAlone) {
    EXPECT_EQ(GigabyteField::bytesFromValue(-1.5), -1'610'612'736);
    EXPECT_DOUBLE_EQ(GigabyteField::valueFromBytes(-1'073'741'824), -1);
}

TEST(GigabyteField, RoundsToTheNearestByte) {
    EXPECT_EQ(GigabyteField::bytesFromValue(2.6 / 1'073'741'824), 3);
    EXPECT_EQ(GigabyteField::bytesFromValue(2.4 / 1'073'741'824), 2);
}

TEST(GigabyteFieldDeathTest, StopsAtAValueThatFitsNoCount) {
    EXPECT_DEATH((void)GigabyteField::bytesFromValue(1e10), "");
    EXPECT_DEATH((void)GigabyteField::bytesFromValue(std::nan("")), "");
}

}  // namespace
}  // namespace cairnfield
