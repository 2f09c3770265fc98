#include "Shared/Formatting/TextMatching.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

bool contains(std::string_view text, std::string_view needle) {
    return FoldedText(text).contains(FoldedText(needle));
}

TEST(FoldedText, IgnoresCase) {
    EXPECT_TRUE(contains("feature/main-x", "mAIN"));
    EXPECT_TRUE(contains("le café", "CAFÉ"));
    EXPECT_TRUE(contains("Äpfel", "äPF"));
    EXPECT_FALSE(contains("feature/main-x", "mainx"));
}

TEST(FoldedText, FoldsCharactersThatBecomeSeveral) {
    EXPECT_TRUE(contains("Straße", "STRASSE"));
    EXPECT_TRUE(contains("STRASSE", "straße"));
}

TEST(FoldedText, CountsAccentsHoweverTheyAreSpelled) {
    EXPECT_FALSE(contains("le café", "cafe"));
    EXPECT_FALSE(contains("cafe\u0301", "cafe")) << "an accent of its own";
    EXPECT_TRUE(contains("cafe\u0301", "café"));
}

TEST(FoldedText, ContainsTheEmptyText) {
    EXPECT_TRUE(contains("anything", ""));
    EXPECT_TRUE(contains("", ""));
    EXPECT_FALSE(contains("", "a"));
}

TEST(FoldedText, RepairsMalformedText) {
    EXPECT_TRUE(contains("bad\xFFName", "NAME"));
    EXPECT_TRUE(contains("bad\xFFName", "d\xFFn")) << "both are repaired alike";
}

TEST(FoldedText, FollowsTheLocale) {
    EXPECT_TRUE(contains("ISTANBUL", "istanbul"));
    const ScopedEnvironment turkish("LC_ALL", "tr_TR.UTF-8");
    EXPECT_FALSE(contains("ISTANBUL", "istanbul"));
    EXPECT_TRUE(contains("İSTANBUL", "istanbul"));
}

TEST(CompareIgnoringCase, OrdersNamesAsAPersonExpects) {
    EXPECT_LT(compareIgnoringCase("apple", "Banana"), 0);
    EXPECT_GT(compareIgnoringCase("banana", "Apple"), 0);
    EXPECT_EQ(compareIgnoringCase("README", "readme"), 0);
    EXPECT_NE(compareIgnoringCase("cafe", "café"), 0);
    EXPECT_LT(compareIgnoringCase("Äpfel", "Birne"), 0);
    EXPECT_LT(compareIgnoringCase("bad\xFF", "bae"), 0) << "malformed text has a place too";
}

TEST(CompareIgnoringCase, FollowsTheLocale) {
    EXPECT_LT(compareIgnoringCase("ä", "z"), 0);
    const ScopedEnvironment swedish("LC_ALL", "sv_SE.UTF-8");
    EXPECT_GT(compareIgnoringCase("ä", "z"), 0);
}

}  // namespace
}  // namespace cairnfield
