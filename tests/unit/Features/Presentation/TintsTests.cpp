#include "Features/Presentation/Tints.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(Tints, TellTheStorageLevelsApart) {
    EXPECT_EQ(tintName(StorageLevel::normal), "green");
    EXPECT_EQ(tintName(StorageLevel::warning), "orange");
    EXPECT_EQ(tintName(StorageLevel::critical), "red");
}

TEST(Tints, TellTheVerdictsApart) {
    EXPECT_EQ(tintName(SafetyDisposition::safeToClean), "green");
    EXPECT_EQ(tintName(SafetyDisposition::preservedRemotely), "blue");
    EXPECT_EQ(tintName(SafetyDisposition::preserveFirst), "orange");
    EXPECT_EQ(tintName(SafetyDisposition::inUse), "purple");
    EXPECT_EQ(tintName(SafetyDisposition::needsReview), "yellow");
    EXPECT_EQ(tintName(SafetyDisposition::cannotClean), "secondary");
}

TEST(Tints, TellTheOutcomesOfACleanupApart) {
    EXPECT_EQ(tintName(CleanupOutcome::succeeded), "green");
    EXPECT_EQ(tintName(CleanupOutcome::failed), "red");
    EXPECT_EQ(tintName(CleanupOutcome::cancelled), "secondary");
    EXPECT_EQ(tintName(CleanupOutcome::partiallyCompleted), "orange");
}

}  // namespace
}  // namespace cairnfield
