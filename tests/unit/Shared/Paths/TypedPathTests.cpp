#include "Shared/Paths/TypedPath.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(TypedPath, IsTakenWhenItIsAbsolute) {
    const FilePath home("/home/ada");
    EXPECT_EQ(pathFromTyped("  /srv/code/ \n", home), FilePath("/srv/code"));
    EXPECT_EQ(pathFromTyped("~", home), FilePath("/home/ada"));
    EXPECT_EQ(pathFromTyped("~/code", home), FilePath("/home/ada/code"));
    EXPECT_EQ(pathFromTyped("code", home), std::nullopt);
    EXPECT_EQ(pathFromTyped("~bob/code", home), std::nullopt);
    EXPECT_EQ(pathFromTyped("", home), std::nullopt);
}

TEST(EncodedPath, BecomesTheBytesThatItNames) {
    EXPECT_EQ(pathFromEncoded("/a%20b%0A%25"), FilePath("/a b\n%"));
    EXPECT_EQ(pathFromEncoded("/%FF%C3%A4"), FilePath("/\xff\xc3\xa4"));
    EXPECT_EQ(pathFromEncoded("/100%"), FilePath("/100%"));
    EXPECT_EQ(pathFromEncoded("/%zz%4"), FilePath("/%zz%4"));
}

}  // namespace
}  // namespace cairnfield
