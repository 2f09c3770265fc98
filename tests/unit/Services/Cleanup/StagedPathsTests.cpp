#include "Services/Cleanup/StagedPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StagedPaths, GoAsTheyAre) {
    for (const char* path : {"a.txt", "-dash", "a b\n", "deep/er", "a:b", "\xff", "#1", "!x", "~"})
        EXPECT_EQ(StagedPaths::argumentFor(path), path);
}

TEST(StagedPaths, GoInTheirLiteralFormWhereGitWouldReadAPattern) {
    for (const std::string path : {"a*b", "a?b", "[ab]", "a\\b", ":top", ":(glob)x", ":!x"})
        EXPECT_EQ(StagedPaths::argumentFor(path), ":(literal)" + path);
}

TEST(StagedPaths, GoInAsFewCommandsAsHoldThem) {
    EXPECT_THAT(StagedPaths::batches({}), IsEmpty());
    EXPECT_THAT(StagedPaths::batches({"a", "b"}), ElementsAre(ElementsAre("a", "b")));
    // Each takes its byte, the one that ends it and its pointer: ten bytes.
    EXPECT_THAT(StagedPaths::batches({"a", "b", "c"}, 20),
                ElementsAre(ElementsAre("a", "b"), ElementsAre("c")));
    EXPECT_THAT(StagedPaths::batches({"longer than all", "b"}, 5),
                ElementsAre(ElementsAre("longer than all"), ElementsAre("b")));
}

}  // namespace
}  // namespace cairnfield
