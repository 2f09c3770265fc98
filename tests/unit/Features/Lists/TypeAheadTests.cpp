#include "Features/Lists/TypeAhead.h"

#include <gtest/gtest.h>

#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

class TypeAheadTest : public testing::Test {
protected:
    std::optional<int> type(std::string_view text, std::chrono::milliseconds after = 100ms) {
        now_ += after;
        const auto row = typeAhead_.find(text, now_, current_, static_cast<int>(names_.size()),
                                         [this](int at) { return names_[static_cast<std::size_t>(at)]; });
        if (row) current_ = *row;
        return row;
    }

    std::vector<std::optional<std::string>> names_{std::nullopt, "Main",    "fix-colour",
                                                   std::nullopt, "feature", "fix-crash"};
    TypeAhead typeAhead_;
    TypeAhead::Instant now_{1h};
    int current_ = -1;
};

TEST_F(TypeAheadTest, FindsARowByTheStartOfItsNameWhateverTheCase) {
    EXPECT_EQ(type("m"), 1);
}

TEST_F(TypeAheadTest, NarrowsWithEachLetter) {
    EXPECT_EQ(type("f"), 2);
    EXPECT_EQ(type("e"), 4);
}

TEST_F(TypeAheadTest, StaysOnARowThatStillFits) {
    EXPECT_EQ(type("f"), 2);
    EXPECT_EQ(type("i"), 2);
    EXPECT_EQ(type("x"), 2);
}

TEST_F(TypeAheadTest, StepsThroughTheRowsOfOneLetterAndRoundTheEnd) {
    EXPECT_EQ(type("f"), 2);
    EXPECT_EQ(type("f"), 4);
    EXPECT_EQ(type("f"), 5);
    EXPECT_EQ(type("f"), 2);
}

TEST_F(TypeAheadTest, StartsOverAfterAPause) {
    EXPECT_EQ(type("f"), 2);
    EXPECT_EQ(type("m", 1001ms), 1);
}

TEST_F(TypeAheadTest, FindsNothingWhereNothingFits) {
    EXPECT_EQ(type("z"), std::nullopt);
    names_.clear();
    EXPECT_EQ(type("f", 2s), std::nullopt);
}

}  // namespace
}  // namespace cairnfield
