#include "Shared/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

TEST(Text, TellsWellFormedBytesFromOthers) {
    EXPECT_TRUE(isValidUTF8(""));
    EXPECT_TRUE(isValidUTF8("plain"));
    EXPECT_TRUE(isValidUTF8("é ä 日本 😀"));
    EXPECT_TRUE(isValidUTF8("a\0b"s));
    EXPECT_FALSE(isValidUTF8("\xFF"));
    EXPECT_FALSE(isValidUTF8("\x80"));
    EXPECT_FALSE(isValidUTF8("caf\xE9"));
    EXPECT_FALSE(isValidUTF8("\xC0\xAF")) << "overlong";
    EXPECT_FALSE(isValidUTF8("\xE0\x80\xAF")) << "overlong";
    EXPECT_FALSE(isValidUTF8("\xF0\x80\x80\xAF")) << "overlong";
    EXPECT_FALSE(isValidUTF8("\xED\xA0\x80")) << "surrogate";
    EXPECT_FALSE(isValidUTF8("\xF4\x90\x80\x80")) << "above the last character";
    EXPECT_FALSE(isValidUTF8("\xE2\x82")) << "cut short";
}

TEST(Text, AcceptsTheCharactersAtTheEdgesOfEachLength) {
    for (const char* text : {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                             "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isValidUTF8(text)) << testing::PrintToString(text);
}

TEST(Text, CountsTheBytesUpToTheFirstMalformedOne) {
    EXPECT_EQ(validUTF8Length("né\xFFx"), 3U);
    EXPECT_EQ(validUTF8Length(""), 0U);
    EXPECT_EQ(validUTF8Length("ab\xE2\x82"), 2U);
}

TEST(Text, PutsOneSignInPlaceOfEachMaximalMalformedSequence) {
    EXPECT_EQ(repairedUTF8("valid é"), "valid é");
    EXPECT_EQ(repairedUTF8("caf\xE9"), "caf\uFFFD");
    EXPECT_EQ(repairedUTF8("\xE2\x82!"), "\uFFFD!") << "the beginning of one character";
    EXPECT_EQ(repairedUTF8("\xF0\x9F\x98"), "\uFFFD");
    EXPECT_EQ(repairedUTF8("\xFF\xFE"), "\uFFFD\uFFFD");
    EXPECT_EQ(repairedUTF8("\xE0\x80\x80"), "\uFFFD\uFFFD\uFFFD") << "none of them continues the first";
    EXPECT_EQ(repairedUTF8("\xF1\x80\xC3\xA9"), "\uFFFDé");
}

TEST(Text, TrimsWhiteSpaceOfEveryKindAtBothEnds) {
    EXPECT_EQ(trimmed(" \t\r\n text \v\f"), "text");
    EXPECT_EQ(trimmed("\u00A0\u2003\u3000in the middle\u2028\u2029\u202F\u205F\u1680\u0085"),
              "in the middle");
    EXPECT_EQ(trimmed("\n \u3000"), "");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed("é"), "é");
    EXPECT_EQ(trimmed("\u200Bkept"), "\u200Bkept") << "without width, but no space";
}

TEST(Text, TrimsNoMalformedBytes) {
    EXPECT_EQ(trimmed(" \xFF "), "\xFF");
    EXPECT_EQ(trimmed("\xA0"), "\xA0");
    EXPECT_EQ(trimmed("x\x80\x80\x80\x80"), "x\x80\x80\x80\x80");
}

TEST(Text, MakesControlsVisibleOnOneLine) {
    EXPECT_EQ(visibleText("a\nb\tc\rd"), "a␊b␉c␍d");
    EXPECT_EQ(visibleText("nul\0del\x7F"s), "nul␀del␡");
    EXPECT_EQ(visibleText("\x1B[31mred"), "␛[31mred");
    EXPECT_EQ(visibleText("\u0085\u009B"), "\uFFFD\uFFFD");
}

TEST(Text, MakesLineSeparatorsAndChangesOfDirectionVisible) {
    for (const char* hostile : {"\u2028", "\u2029", "\u202A", "\u202B", "\u202C", "\u202D", "\u202E",
                                "\u2066", "\u2067", "\u2068", "\u2069", "\u200E", "\u200F", "\u061C"})
        EXPECT_EQ(visibleText("a" + std::string(hostile) + "b"), "a\uFFFDb")
            << testing::PrintToString(hostile);
}

TEST(Text, KeepsTheLinesOfAMessageAndNothingElseThatControls) {
    EXPECT_EQ(visibleLines("one\r\ntwo\n\nthree \x1B[31m\u202E\xFF"), "one\ntwo\n\nthree ␛[31m\uFFFD\uFFFD");
    EXPECT_EQ(visibleLines("over\rwritten"), "over␍written");
    EXPECT_EQ(visibleLines("\r\n\nmiddle\n\r\n"), "middle");
    EXPECT_EQ(visibleLines("\n"), "");
    EXPECT_EQ(visibleLines(""), "");
}

TEST(Text, LeavesOrdinaryTextInEveryScriptAsItIs) {
    EXPECT_EQ(visibleText("Ünï 日本語 עברית 😀 a b"), "Ünï 日本語 עברית 😀 a b");
    EXPECT_EQ(visibleText("bad\xFFname"), "bad\uFFFDname");
    EXPECT_EQ(visibleText(""), "");
}

TEST(Text, SplitsWithoutEmptyPieces) {
    EXPECT_THAT(splitDroppingEmpty("a,b,,c,", ','), ElementsAre("a", "b", "c"));
    EXPECT_THAT(splitDroppingEmpty(",", ','), IsEmpty());
    EXPECT_THAT(splitDroppingEmpty("", ','), IsEmpty());
    EXPECT_THAT(splitDroppingEmpty("one", ','), ElementsAre("one"));
    EXPECT_THAT(splitDroppingEmpty("a\0b\0"s, '\0'), ElementsAre("a", "b"));
}

TEST(Text, LowersASCIILettersOnly) {
    EXPECT_EQ(lowercasedASCII("ABC xyz É \xC9"), "abc xyz É \xC9");
}

}  // namespace
}  // namespace cairnfield
