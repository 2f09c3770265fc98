#include "Shared/Paths/FilePath.h"
#include "Shared/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unordered_map>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

std::string standardized(std::string path) {
    return FilePath(std::move(path)).standardized().bytes();
}

TEST(FilePath, StandardizesByTextAlone) {
    EXPECT_EQ(standardized("/a/b"), "/a/b");
    EXPECT_EQ(standardized("/a/b/"), "/a/b");
    EXPECT_EQ(standardized("//a///b//"), "/a/b");
    EXPECT_EQ(standardized("/a/./b/."), "/a/b");
    EXPECT_EQ(standardized("/a/x/../b"), "/a/b");
    EXPECT_EQ(standardized("/../../a"), "/a");
    EXPECT_EQ(standardized("/a/.."), "/");
    EXPECT_EQ(standardized("/"), "/");
    EXPECT_EQ(standardized("///"), "/");
    EXPECT_EQ(standardized(""), "");
    EXPECT_EQ(standardized("/a/...b/..c"), "/a/...b/..c");
    EXPECT_EQ(standardized("/ a/ b "), "/ a/ b ");
    EXPECT_EQ(standardized("/a/\xFF\n/"), "/a/\xFF\n");
}

TEST(FilePath, KeepsWhatARelativePathClimbs) {
    EXPECT_EQ(standardized("a/../../b"), "../b");
    EXPECT_EQ(standardized("../../a/./b/"), "../../a/b");
    EXPECT_EQ(standardized("a/.."), "");
    EXPECT_EQ(standardized("./a"), "a");
}

TEST(FilePath, IsTheSameWhenStandardizedAgain) {
    for (const char* path : {"/a/../b//c/.", "../x/..", "/", "", "/..", "a//b"})
        EXPECT_EQ(standardized(standardized(path)), standardized(path)) << path;
}

TEST(FilePath, NamesItsLastComponent) {
    EXPECT_EQ(FilePath("/a/b.txt").lastComponent(), "b.txt");
    EXPECT_EQ(FilePath("/a/b//").lastComponent(), "b");
    EXPECT_EQ(FilePath("name").lastComponent(), "name");
    EXPECT_EQ(FilePath("/").lastComponent(), "/");
    EXPECT_EQ(FilePath("//").lastComponent(), "/");
    EXPECT_EQ(FilePath("").lastComponent(), "");
}

TEST(FilePath, NamesItsParent) {
    EXPECT_EQ(FilePath("/a/b").parent().bytes(), "/a");
    EXPECT_EQ(FilePath("/a/b/").parent().bytes(), "/a");
    EXPECT_EQ(FilePath("/a//b").parent().bytes(), "/a");
    EXPECT_EQ(FilePath("/a").parent().bytes(), "/");
    EXPECT_EQ(FilePath("/").parent().bytes(), "/");
    EXPECT_EQ(FilePath("a").parent().bytes(), "");
    EXPECT_EQ(FilePath("").parent().bytes(), "");
}

TEST(FilePath, AppendsWithExactlyOneSlash) {
    EXPECT_EQ(FilePath("/a").appending("b").bytes(), "/a/b");
    EXPECT_EQ(FilePath("/a/").appending("/b").bytes(), "/a/b");
    EXPECT_EQ(FilePath("/").appending("b").bytes(), "/b");
    EXPECT_EQ(FilePath("/a").appending("b/../c").bytes(), "/a/b/../c");
    EXPECT_EQ(FilePath("").appending("b").bytes(), "b");
}

TEST(FilePath, ListsItsComponentsWithoutTheRoot) {
    EXPECT_THAT(FilePath("/a/b").components(), ElementsAre("a", "b"));
    EXPECT_THAT(FilePath("//a/ /").components(), ElementsAre("a", " "));
    EXPECT_THAT(FilePath("/").components(), IsEmpty());
}

TEST(FilePath, IsShownOnOneLineOfValidText) {
    const FilePath hostile("/a\nb/\xFF\u202Ec");
    EXPECT_EQ(hostile.display(), "/a␊b/\uFFFD\uFFFDc");
    EXPECT_EQ(hostile.bytes(), "/a\nb/\xFF\u202Ec") << "shown safely, carried as it is";
}

TEST(FilePath, IsComparedAndHashedByItsBytes) {
    EXPECT_NE(FilePath("/a"), FilePath("/a/"));
    EXPECT_LT(FilePath("/a"), FilePath("/b"));
    std::unordered_map<FilePath, int> map{{FilePath("/a"), 1}};
    EXPECT_TRUE(map.contains(FilePath("/a")));
    EXPECT_FALSE(map.contains(FilePath("/A")));
}

TEST(PathJSONText, LeavesValidTextAsItIs) {
    EXPECT_EQ(pathToJSONText(FilePath("/home/me/Ünï 日本\n")), "/home/me/Ünï 日本\n");
    EXPECT_EQ(pathFromJSONText("/home/me/Ünï 日本\n"), FilePath("/home/me/Ünï 日本\n"));
}

TEST(PathJSONText, WritesEachMalformedByteAsTwoDigitsAfterANull) {
    EXPECT_EQ(pathToJSONText(FilePath("/a\xFF/\xC3")), "/a\0ff/\0c3"s);
    EXPECT_EQ(pathFromJSONText("/a\0ff/\0c3"s), FilePath("/a\xFF/\xC3"));
}

TEST(PathJSONText, CarriesAnyBytesThereAndBack) {
    unsigned state = 20'261'121;
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = "/";
        for (int i = 0; i < 12; ++i) {
            state = state * 1'664'525U + 1'013'904'223U;
            const auto byte = static_cast<char>(state >> 24U);
            if (byte != '\0') bytes += byte;
        }
        const std::string text = pathToJSONText(FilePath(bytes));
        EXPECT_TRUE(isValidUTF8(text));
        EXPECT_EQ(pathFromJSONText(text).bytes(), bytes) << testing::PrintToString(bytes);
    }
}

TEST(PathJSONText, NeverReadsANullIntoAPath) {
    for (const std::string& text :
         {"/a\0"s, "/a\0g0"s, "/a\0f"s, "/a\0FF"s, "/a\00041"s, "/a\0\0"s, "/a\0é"s}) {
        const FilePath path = pathFromJSONText(text);
        EXPECT_EQ(path.bytes().find('\0'), std::string::npos) << testing::PrintToString(text);
        EXPECT_TRUE(path.bytes().starts_with("/a\uFFFD")) << testing::PrintToString(text);
    }
}

}  // namespace
}  // namespace cairnfield
