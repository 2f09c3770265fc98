#include "Shared/Formatting/Characters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Characters, AreWhatAPersonSees) {
    EXPECT_THAT(userPerceivedCharacters("a-b"), ElementsAre("a", "-", "b"));
    EXPECT_THAT(userPerceivedCharacters("\xC3\xB3j"), ElementsAre("\xC3\xB3", "j"));
    EXPECT_THAT(userPerceivedCharacters("o\xCC\x81j"), ElementsAre("o\xCC\x81", "j")) << "letter and accent";
    EXPECT_THAT(userPerceivedCharacters("\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBBx"),
                ElementsAre("\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB", "x"))
        << "one picture of three parts";
    EXPECT_THAT(userPerceivedCharacters("\r\n"), ElementsAre("\r\n"));
    EXPECT_THAT(userPerceivedCharacters(""), IsEmpty());
}

TEST(Characters, OfMalformedTextAreRepaired) {
    EXPECT_THAT(userPerceivedCharacters("a\xFFz"), ElementsAre("a", "\xEF\xBF\xBD", "z"));
}

}  // namespace
}  // namespace cairnfield
