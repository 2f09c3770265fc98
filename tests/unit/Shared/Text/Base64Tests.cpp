#include "Shared/Text/Base64.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace cairnfield {
namespace {

TEST(Base64, WritesAndReadsEveryPadding) {
    const std::vector<std::pair<std::string, std::string>> known{{"", ""},
                                                                 {"f", "Zg=="},
                                                                 {"fo", "Zm8="},
                                                                 {"foo", "Zm9v"},
                                                                 {"foob", "Zm9vYg=="},
                                                                 {"fooba", "Zm9vYmE="},
                                                                 {"\"smart\"", "InNtYXJ0Ig=="},
                                                                 {"\xFB\xFF", "+/8="}};
    for (const auto& [bytes, text] : known) {
        EXPECT_EQ(base64Encoded(bytes), text);
        EXPECT_EQ(base64Decoded(text), bytes) << text;
    }
}

TEST(Base64, CarriesEveryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    EXPECT_EQ(base64Decoded(base64Encoded(bytes)), bytes);
}

TEST(Base64, RefusesWhatIsNotBase64) {
    for (const char* text : {"Zg", "Zg=", "Z===", "====", "Zm9v\n", "Zm9 ", "Z=9v", "Zm9-", "Zg==Zg=="})
        EXPECT_EQ(base64Decoded(text), std::nullopt) << text;
}

}  // namespace
}  // namespace cairnfield
