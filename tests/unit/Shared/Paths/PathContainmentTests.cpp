#include "Shared/Paths/PathContainment.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(PathContainment, GoesByWholeNames) {
    EXPECT_TRUE(isAtOrBelow(FilePath("/a/b"), FilePath("/a")));
    EXPECT_TRUE(isAtOrBelow(FilePath("/a"), FilePath("/a")));
    EXPECT_TRUE(isAtOrBelow(FilePath("/a"), FilePath("/")));
    EXPECT_FALSE(isAtOrBelow(FilePath("/ab"), FilePath("/a")));
    EXPECT_FALSE(isAtOrBelow(FilePath("/a"), FilePath("/a/b")));
    EXPECT_FALSE(isAtOrBelow(FilePath("/a"), FilePath()));
}

}  // namespace
}  // namespace cairnfield
