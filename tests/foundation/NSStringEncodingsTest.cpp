#include "platform/foundation/NSData.h"
#include "platform/foundation/NSString.h"
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <unicode/ucnv.h>

namespace mac::test {

namespace {

NSData dataOf(std::string_view bytes) { return NSData::dataWithBytes(std::as_bytes(std::span(bytes))); }

std::string bytesOf(NSData const& data) { return {reinterpret_cast<char const*>(data.bytes()), data.span().size()}; }

struct Encoded {
    NSStringEncoding encoding;
    std::string_view bytes;
    std::u16string_view text;
};

TEST(NSStringEncodings, HoldTextBothWays) {
    for (Encoded const& encoded : {
             Encoded{NSASCIIStringEncoding, "az", u"az"},
             Encoded{NSUTF8StringEncoding, "\xC3\xA9\xF0\x9F\x98\x80", u"\u00E9\U0001F600"},
             Encoded{NSISOLatin1StringEncoding, "\xE9\x80", u"\u00E9\u0080"},
             Encoded{NSMacOSRomanStringEncoding, "\x8E\xF0\xDB", u"\u00E9\uF8FF\u20AC"},
             Encoded{NSNEXTSTEPStringEncoding, "\x81\xAE\xFD", u"\u00C0\uFB01\u00FF"},
         }) {
        EXPECT_EQ(encoded.text,
                  NSString::stringWithData_encoding_(dataOf(encoded.bytes), encoded.encoding).codeUnits());
        EXPECT_EQ(encoded.bytes,
                  bytesOf(NSString::stringWithCodeUnits(encoded.text).dataUsingEncoding_(encoded.encoding)));
    }
}

TEST(NSStringEncodings, AreNilForWhatTheyCannotHold) {
    EXPECT_TRUE(NSString::stringWithData_encoding_(dataOf("\x80"), NSASCIIStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(dataOf("\xFF"), NSUTF8StringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(dataOf("\xFE"), NSNEXTSTEPStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(dataOf("abc"), NSUnicodeStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(dataOf("a"), static_cast<NSStringEncoding>(12345)) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(nil, NSUTF8StringEncoding) == nil);
    NSString const euro = NSString::stringWithCodeUnits(u"\u20AC");
    EXPECT_TRUE(euro.dataUsingEncoding_(NSASCIIStringEncoding) == nil);
    EXPECT_TRUE(euro.dataUsingEncoding_(NSISOLatin1StringEncoding) == nil);
    EXPECT_TRUE(euro.dataUsingEncoding_(NSNEXTSTEPStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithCodeUnits(u"\uFFFD").dataUsingEncoding_(NSNEXTSTEPStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithCodeUnits(u"\u4E00").dataUsingEncoding_(NSMacOSRomanStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithCodeUnits(u"a\xD800").dataUsingEncoding_(NSUTF8StringEncoding) == nil);
    EXPECT_TRUE(euro.dataUsingEncoding_(static_cast<NSStringEncoding>(12345)) == nil);
    EXPECT_TRUE(NSString(nil).dataUsingEncoding_(NSUTF8StringEncoding) == nil);
}

TEST(NSStringEncodings, ReadUTF16InEitherOrder) {
    EXPECT_EQ(u"\u20AC",
              NSString::stringWithData_encoding_(dataOf("\xFF\xFE\xAC\x20"), NSUnicodeStringEncoding).codeUnits());
    EXPECT_EQ(u"\u20AC",
              NSString::stringWithData_encoding_(dataOf("\xFE\xFF\x20\xAC"), NSUnicodeStringEncoding).codeUnits());
}

TEST(NSStringEncodings, WriteUTF16ThatTheyReadAgain) {
    NSString const text = NSString::stringWithCodeUnits(u"\u20ACa\xD800");
    NSData const data = text.dataUsingEncoding_(NSUnicodeStringEncoding);
    EXPECT_EQ(8U, data.length());
    EXPECT_EQ(text.codeUnits(), NSString::stringWithData_encoding_(data, NSUnicodeStringEncoding).codeUnits());
}

TEST(NSStringEncodings, LeaveOutTheByteOrderMarkOfUTF8) {
    EXPECT_EQ(u"a", NSString::stringWithData_encoding_(dataOf("\xEF\xBB\xBF"
                                                              "a"),
                                                       NSUTF8StringEncoding)
                        .codeUnits());
}

TEST(NSStringEncodings, AgreeWithICUOnEveryByteOfMacOSRoman) {
    struct Close {
        void operator()(UConverter* converter) const { ucnv_close(converter); }
    };
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, Close> const converter(ucnv_open("macintosh", &status));
    ASSERT_TRUE(U_SUCCESS(status));
    for (int byte = 0; byte < 256; ++byte) {
        char const single = static_cast<char>(byte);
        char16_t expected[4]{};
        ASSERT_EQ(1, ucnv_toUChars(converter.get(), expected, 4, &single, 1, &status));
        NSString const text = NSString::stringWithData_encoding_(dataOf({&single, 1}), NSMacOSRomanStringEncoding);
        EXPECT_EQ(std::u16string_view(expected, 1), text.codeUnits()) << byte;
        EXPECT_EQ(std::string(1, single), bytesOf(text.dataUsingEncoding_(NSMacOSRomanStringEncoding))) << byte;
    }
}

TEST(NSStringEncodings, GiveEveryByteOfNEXTSTEPACharacterOfItsOwn) {
    std::set<std::u16string_view::value_type> seen;
    for (int byte = 0; byte < 0xFE; ++byte) {
        char const single = static_cast<char>(byte);
        NSString const text = NSString::stringWithData_encoding_(dataOf({&single, 1}), NSNEXTSTEPStringEncoding);
        ASSERT_EQ(1U, text.length()) << byte;
        EXPECT_TRUE(seen.insert(text.characterAtIndex_(0)).second) << byte;
        EXPECT_EQ(std::string(1, single), bytesOf(text.dataUsingEncoding_(NSNEXTSTEPStringEncoding))) << byte;
    }
}

} // namespace

} // namespace mac::test
