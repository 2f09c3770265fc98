#include "Services/Cleanup/ByteCursor.h"
#include "Services/Cleanup/GitIndexFile.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string number(std::uint64_t value, std::size_t bytes) {
    std::string text;
    for (std::size_t i = bytes; i-- > 0;) text += static_cast<char>(value >> (8 * i));
    return text;
}

std::string entry(const std::string& path, std::uint16_t flags = 0) {
    std::string text = std::string(24, '\1') + number(0100644, 4) + std::string(12, '\2') +
                       std::string(20, 'o') + number(flags, 2) + path;
    return text + std::string(8 - text.size() % 8, '\0');
}

std::string index(const std::vector<std::string>& entries, const std::string& extensions = {}) {
    std::string text = "DIRC" + number(2, 4) + number(entries.size(), 4);
    for (const std::string& one : entries) text += one;
    return text + extensions + std::string(20, 'c');
}

TEST(GitIndexFile, ReadsPathsAndMarks) {
    const auto file = GitIndexFile::parse(index({entry("a"), entry("deep/file.txt", 0x8000)}), 20);
    ASSERT_TRUE(file);
    ASSERT_EQ(file->entries.size(), 2U);
    EXPECT_EQ(file->entries[0].path, "a");
    EXPECT_FALSE(file->entries[0].isHidden());
    EXPECT_EQ(file->entries[1].path, "deep/file.txt");
    EXPECT_TRUE(file->entries[1].isAssumedUnchanged);
    EXPECT_EQ(file->entries[1].object, std::string(20, 'o'));
}

TEST(GitIndexFile, IsAbsentWhereverItIsCutOff) {
    const std::string whole = index({entry("a"), entry("b")});
    ASSERT_TRUE(GitIndexFile::parse(whole, 20));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(GitIndexFile::parse(std::string_view(whole).substr(0, length), 20)) << length;
}

TEST(GitIndexFile, PassesOverOnlyExtensionsThatMayBePassedOver) {
    EXPECT_TRUE(GitIndexFile::parse(index({}, "ABCD" + number(0, 4)), 20));
    EXPECT_TRUE(GitIndexFile::parse(index({}, "sdir" + number(0, 4)), 20));
    EXPECT_FALSE(GitIndexFile::parse(index({}, "abcd" + number(0, 4)), 20));
}

TEST(GitIndexFile, IsAbsentForWhatItDoesNotKnow) {
    EXPECT_FALSE(GitIndexFile::parse("", 20));
    EXPECT_FALSE(GitIndexFile::parse("DIRC" + number(5, 4) + number(0, 4) + std::string(20, 'c'), 20));
    EXPECT_FALSE(
        GitIndexFile::parse("DIRC" + number(2, 4) + number(4'000'000'000, 4) + std::string(20, 'c'), 20));
}

TEST(GitIndexFile, NamesItsBaseAndWhatItChangesThere) {
    const std::string noBits = number(0, 4) + number(1, 4) + number(0, 8) + number(0, 4);
    const std::string secondBit =
        number(2, 4) + number(2, 4) + number(std::uint64_t(1) << 33U, 8) + number(2, 8) + number(0, 4);
    const std::string link = std::string(20, 'b') + noBits + secondBit;
    const auto file = GitIndexFile::parse(index({entry("")}, "link" + number(link.size(), 4) + link), 20);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->base, std::string(20, 'b'));
    EXPECT_THAT(file->deleted, IsEmpty());
    EXPECT_THAT(file->superseded, ElementsAre(1U));
}

TEST(GitIndexFile, IsNotUnderstoodWithEntriesThatReplaceNothing) {
    const TemporaryDirectory git;
    (void)git.write("index", index({entry("a"), entry("")}));
    EXPECT_FALSE(readGitIndex(git.path(), 20)) << "there is no base";

    const std::string noBits = number(0, 4) + number(1, 4) + number(0, 8) + number(0, 4);
    const std::string link = std::string(20, '\xAB') + noBits + noBits;
    std::string baseName = "sharedindex.";
    for (int i = 0; i < 20; ++i) baseName += "ab";
    (void)git.write("index", index({entry("b")}, "link" + number(link.size(), 4) + link));
    (void)git.write(baseName, index({entry("a")}));
    const auto whole = readGitIndex(git.path(), 20);
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->size(), 2U);

    (void)git.write("index", index({entry("")}, "link" + number(link.size(), 4) + link));
    EXPECT_FALSE(readGitIndex(git.path(), 20)) << "no bit says what it replaces";
    (void)git.write("index", index({entry("b")}, "link" + number(link.size(), 4) + link));
    (void)git.write(baseName, index({entry("")}));
    EXPECT_FALSE(readGitIndex(git.path(), 20)) << "the base has a nameless entry";
}

TEST(ByteCursor, TakesNoBitmapThatOnlyAsksForMemory) {
    const std::uint64_t bits = std::uint64_t(1) << 28U;
    const std::uint64_t allOfThem = 1U | ((bits / 64) << 1U);
    const std::string bytes = number(bits, 4) + number(1, 4) + number(allOfThem, 8) + number(0, 4);
    ByteCursor cursor(bytes);
    EXPECT_THAT(cursor.bitmap(), IsEmpty());
    EXPECT_FALSE(cursor.isGood());
}

TEST(ByteCursor, ReadsABitmapOfRunsAndWords) {
    const std::uint64_t marker = 1U | (1U << 1U) | (std::uint64_t(1) << 33U);  // 64 ones, then one word
    const std::string bytes = number(130, 4) + number(2, 4) + number(marker, 8) + number(5, 8) + number(0, 4);
    ByteCursor cursor(bytes);
    const std::vector<std::size_t> set = cursor.bitmap();
    EXPECT_TRUE(cursor.isGood());
    ASSERT_EQ(set.size(), 66U);
    EXPECT_EQ(set[63], 63U);
    EXPECT_EQ(set[64], 64U);
    EXPECT_EQ(set[65], 66U);
}

TEST(ByteCursor, RemembersThatItRanOut) {
    ByteCursor cursor("abc");
    EXPECT_EQ(cursor.number16(), 0x6162);
    EXPECT_TRUE(cursor.isGood());
    EXPECT_EQ(cursor.number32(), 0U);
    EXPECT_FALSE(cursor.isGood());
    EXPECT_EQ(cursor.take(1), "");
}

TEST(ByteCursor, GivesUpOnABitmapThatNothingCanHold) {
    const std::uint64_t longestRun = 1U | (std::uint64_t(0xFFFFFFFF) << 1U);
    const std::string bytes = number(0xFFFFFFFF, 4) + number(1, 4) + number(longestRun, 8) + number(0, 4);
    ByteCursor cursor(bytes);
    (void)cursor.bitmap();
    EXPECT_FALSE(cursor.isGood());
}

}  // namespace
}  // namespace cairnfield
