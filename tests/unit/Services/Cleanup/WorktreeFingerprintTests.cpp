#include "Services/Cleanup/WorktreeFingerprint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace cairnfield {
namespace {

// The expected digests come from sha256sum over the same bytes.

TEST(WorktreeFingerprint, DigestsTheStatus) {
    EXPECT_EQ(WorktreeFingerprint::statusDigest(""),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(WorktreeFingerprint::statusDigest("abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(WorktreeFingerprint, DigestsTheWholeStateInItsOrder) {
    // printf '/r\0/w\0HEAD\0b\0digest\0ab'
    EXPECT_EQ(
        WorktreeFingerprint::make(FilePath("/r"), FilePath("/w"), "HEAD", "b", "digest", {"b", "a"}).value,
        "54d38f0fb714016c552ef2809fbcd72d45901140fc2adf45b503e770796967e6");
    // printf '/r\0/w\0\0\0digest\0'
    EXPECT_EQ(
        WorktreeFingerprint::make(FilePath("/r"), FilePath("/w"), std::nullopt, std::nullopt, "digest", {})
            .value,
        "e5cdad2fc30b3612e42cfdfd9ae02848eb386aeb9ecf4527bf84048eadb1bd56");
}

class FingerprintOf : public testing::Test {
protected:
    [[nodiscard]] std::string value() const {
        return WorktreeFingerprint::make(root, path, head, branch, status, ignored).value;
    }

    FilePath root{"/r"};
    FilePath path{"/w"};
    std::optional<std::string> head = "head";
    std::optional<std::string> branch = "branch";
    std::string status = "digest";
    std::vector<std::string> ignored{".env", "build"};
};

TEST_F(FingerprintOf, TheSameStateIsTheSame) {
    const std::string before = value();
    ignored = {"build", ".env"};
    root = FilePath("/x/../r/");
    path = FilePath("//w/.");
    EXPECT_EQ(value(), before) << "order and spelling do not count";
    EXPECT_THAT(before, testing::MatchesRegex("[0-9a-f]{64}"));
}

TEST_F(FingerprintOf, EveryPartCounts) {
    std::set<std::string> values{value()};
    root = FilePath("/R");
    values.insert(value());
    path = FilePath("/W");
    values.insert(value());
    head = std::nullopt;
    values.insert(value());
    branch = std::nullopt;
    values.insert(value());
    status = "other";
    values.insert(value());
    ignored = {".env", "built"};
    values.insert(value());
    ignored.clear();
    values.insert(value());
    EXPECT_THAT(values, testing::SizeIs(8));
}

}  // namespace
}  // namespace cairnfield
