#include "Features/CleanupReview/ReviewListText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

IgnoredEntry file(const std::string& path, std::int64_t size) {
    return {.name = path, .relativePath = path, .sizeBytes = size};
}

NestedSensitiveFiles seen(std::vector<IgnoredEntry> files) {
    return {.seen = std::move(files), .maximumFileBytes = 10'000'000};
}

TEST(NestedFilesText, NamesWhatLooksSensitiveBelowTheTop) {
    EXPECT_EQ(nestedFilesText({}), NamedFilesText());
    EXPECT_EQ(nestedFilesText(seen({file("src/api/.env", 41)})),
              (NamedFilesText{"1 ignored file in a folder looks sensitive.", {"• src/api/.env · 41 bytes"}}));
    EXPECT_EQ(nestedFilesText(seen({file("a/.env", 1'000), file("b/x\ny.key", 2)})),
              (NamedFilesText{"2 ignored files in folders look sensitive.",
                              {"• a/.env · 1 kB", "• b/x␊y.key · 2 bytes"}}));
}

TEST(NestedFilesText, NamesTwoHundredAndCountsTheRest) {
    std::vector<IgnoredEntry> files;
    for (int number = 0; number < 200; ++number) files.push_back(file("k/" + std::to_string(number), 1));
    EXPECT_THAT(nestedFilesText(seen(files)).lines, SizeIs(200));
    files.push_back(file("k/last", 1));
    files.push_back(file("k/very-last", 1));
    const NamedFilesText text = nestedFilesText(seen(files));
    EXPECT_EQ(text.statement, "202 ignored files in folders look sensitive.");
    ASSERT_THAT(text.lines, SizeIs(201));
    EXPECT_EQ(text.lines[199], "• k/199 · 1 byte");
    EXPECT_EQ(text.lines[200], "and 2 more");
}

TEST(NestedFilesText, SaysWhichOfThemGo) {
    const NestedSensitiveFiles both =
        seen({file("a/.env", 5), file("b/big.p12", 10'000'001), file("c/fits.p12", 10'000'000)});
    EXPECT_EQ(nestedFilesThatGoText({}, false), NamedFilesText());
    EXPECT_EQ(nestedFilesThatGoText(seen({file("a/.env", 5)}), true), NamedFilesText());
    EXPECT_EQ(nestedFilesThatGoText(seen({file("a/.env", 5)}), false),
              (NamedFilesText{"Not copied to the Recovery Vault, so this file goes with the worktree:",
                              {"• a/.env · 5 bytes"}}));
    EXPECT_EQ(nestedFilesThatGoText(both, false).statement,
              "Not copied to the Recovery Vault, so these files go with the worktree:");
    EXPECT_THAT(nestedFilesThatGoText(both, false).lines, SizeIs(3));
    EXPECT_EQ(
        nestedFilesThatGoText(both, true),
        (NamedFilesText{"The Recovery Vault takes no file over 10 MB, so this file goes with the worktree:",
                        {"• b/big.p12 · 10 MB"}}));
    EXPECT_EQ(
        nestedFilesThatGoText(seen({file("a.key", 20'000'000), file("b.key", 20'000'000)}), true).statement,
        "The Recovery Vault takes no file over 10 MB, so these files go with the worktree:");
}

TEST(MissingFilesText, SpeaksUpWhenMostFilesAreMissing) {
    EXPECT_EQ(missingFilesText({50, 100}), "");
    EXPECT_EQ(missingFilesText({51, 100}),
              "51 of 100 tracked files are missing here. A cleanup preserves that as their deletion.");
    EXPECT_EQ(missingFilesText({1, 1}),
              "1 of 1 tracked file is missing here. A cleanup preserves that as its deletion.");
}

TEST(ReviewLists, AreHeadedByTheirCount) {
    EXPECT_EQ(changedFilesTitle(1), "1 changed file");
    EXPECT_EQ(changedFilesTitle(12), "12 changed files");
    EXPECT_EQ(untrackedFilesTitle(1), "1 untracked file");
    EXPECT_EQ(untrackedFilesTitle(0), "0 untracked files");
    EXPECT_EQ(ignoredEntriesTitle(1), "1 ignored file or folder");
    EXPECT_EQ(ignoredEntriesTitle(2), "2 ignored files and folders");
}

TEST(ReviewLists, TellTheClassOfAnIgnoredEntry) {
    const auto line = [](IgnoredEntryClass kind) {
        IgnoredEntry entry = file("x\ty", 1'200'000);
        entry.classification = kind;
        return ignoredEntryLine(entry);
    };
    EXPECT_EQ(line(IgnoredEntryClass::unknown), "x␉y · 1.2 MB · Unknown");
    EXPECT_EQ(line(IgnoredEntryClass::rebuildable), "x␉y · 1.2 MB · Rebuildable");
    EXPECT_EQ(line(IgnoredEntryClass::sensitive), "x␉y · 1.2 MB · Sensitive");
}

}  // namespace
}  // namespace cairnfield
