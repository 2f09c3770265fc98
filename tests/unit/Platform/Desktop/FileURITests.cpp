#include "Platform/Linux/Desktop/FileURI.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

TEST(FileURI, LeavesPlainNamesAsTheyAre) {
    EXPECT_EQ(fileURI(FilePath("/home/a-b_c.d~e/F1")), "file:///home/a-b_c.d~e/F1");
}

TEST(FileURI, EncodesWhatHasAMeaningInAddresses) {
    EXPECT_EQ(fileURI(FilePath("/a b/#1?x=%&'\"\n")), "file:///a%20b/%231%3Fx%3D%25%26%27%22%0A");
}

TEST(FileURI, EncodesBytesWhetherTheyAreTextOrNot) {
    EXPECT_EQ(fileURI(FilePath("/\xC3\xA9")), "file:///%C3%A9");
    EXPECT_EQ(fileURI(FilePath("/\xFF\x01")), "file:///%FF%01");
}

}  // namespace
}  // namespace cairnfield
