#include "platform/foundation/text/Encodings.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(FourCharCodeText, IsMacOSRoman) {
    EXPECT_EQ(textOfCode(FourCharCode("aevt")), u"aevt");
    EXPECT_EQ(textOfCode(FourCharCode("b\xA5ll")), u"b\u2022ll");
    EXPECT_EQ(codeOfText(u"b\u2022ll"), FourCharCode("b\xA5ll"));
    EXPECT_EQ(codeOfText(u"url "), FourCharCode("url "));
}

TEST(FourCharCodeText, OfEveryByteComesBack) {
    for (std::uint32_t byte = 0; byte <= 0xFF; ++byte) {
        FourCharCode const code(byte << 24 | byte);
        EXPECT_EQ(codeOfText(textOfCode(code)), code) << byte;
    }
}

TEST(FourCharCodeText, OfOtherLengthsOrCharactersIsNoCode) {
    for (std::u16string_view const text : {u"", u"abc", u"abcde", u"a\u4E00bc", u"ab\U0001F600"})
        EXPECT_FALSE(codeOfText(text));
}

} // namespace
} // namespace mac::test
