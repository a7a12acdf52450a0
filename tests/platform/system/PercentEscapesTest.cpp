#include "platform/system/PercentEscapes.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(PercentEscapes, AreAllBytesButAFew) {
    EXPECT_EQ(percentEscaped("/aZ09-._~"), "/aZ09-._~");
    EXPECT_EQ(percentEscaped("a b%\n\xC3\xA9\xFF"), "a%20b%25%0A%C3%A9%FF");
    EXPECT_EQ(percentEscaped(std::string_view("\0:@[`{", 6)), "%00%3A%40%5B%60%7B");
    EXPECT_EQ(percentEscaped(""), "");
}

TEST(PercentEscapes, AreReadInEitherCase) {
    EXPECT_EQ(percentUnescaped("a%20b%c3%A9%fF+"), "a b\xC3\xA9\xFF+");
    EXPECT_EQ(percentUnescaped("%00"), std::string(1, '\0'));
    EXPECT_EQ(percentUnescaped(""), "");
}

TEST(PercentEscapes, AreOfTwoDigits) {
    for (char const* const text : {"%", "a%2", "%G0", "%0G", "%+1", "% 1", "%-1", "%%20"})
        EXPECT_FALSE(percentUnescaped(text)) << text;
}

TEST(PercentEscapes, OfAllBytesLeadBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes.push_back(static_cast<char>(byte));
    EXPECT_EQ(percentUnescaped(percentEscaped(bytes)), bytes);
}

} // namespace
} // namespace mac::test
