#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSString.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <unicode/ucnv.h>

namespace mac::test {

namespace {

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
             Encoded{NSISOLatin2StringEncoding, "\xE9\xB1", u"\u00E9\u0105"},
             Encoded{NSWindowsCP1252StringEncoding, "\xE9\x80\x93", u"\u00E9\u20AC\u201C"},
             Encoded{NSUTF16BigEndianStringEncoding, "\x20\xAC\xD8\x3D\xDE\x01", u"\u20AC\U0001F601"},
             Encoded{NSUTF16LittleEndianStringEncoding, "\xAC\x20", u"\u20AC"},
             Encoded{NSUTF16BigEndianStringEncoding, "\xFE\xFF", u"\uFEFF"},
             Encoded{NSUTF32BigEndianStringEncoding, std::string_view("\0\1\xF6\1", 4), u"\U0001F601"},
             Encoded{NSUTF32LittleEndianStringEncoding, std::string_view("\1\xF6\1\0", 4), u"\U0001F601"},
         }) {
        EXPECT_EQ(encoded.text, NSString::stringWithData_encoding_(bytes(encoded.bytes), encoded.encoding).codeUnits());
        EXPECT_EQ(encoded.bytes,
                  bytesOf(NSString::stringWithCodeUnits(encoded.text).dataUsingEncoding_(encoded.encoding)));
    }
}

TEST(NSStringEncodings, AreNilForWhatTheyCannotHold) {
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("\x80"), NSASCIIStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("\xFF"), NSUTF8StringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("\xFE"), NSNEXTSTEPStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("abc"), NSUnicodeStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("a"), static_cast<NSStringEncoding>(12345)) == nil);
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
              NSString::stringWithData_encoding_(bytes("\xFF\xFE\xAC\x20"), NSUnicodeStringEncoding).codeUnits());
    EXPECT_EQ(u"\u20AC",
              NSString::stringWithData_encoding_(bytes("\xFE\xFF\x20\xAC"), NSUnicodeStringEncoding).codeUnits());
}

TEST(NSStringEncodings, WriteUTF16ThatTheyReadAgain) {
    NSString const text = NSString::stringWithCodeUnits(u"\u20ACa\xD800");
    NSData const data = text.dataUsingEncoding_(NSUnicodeStringEncoding);
    EXPECT_EQ(8U, data.length());
    EXPECT_EQ(text.codeUnits(), NSString::stringWithData_encoding_(data, NSUnicodeStringEncoding).codeUnits());
}

TEST(NSStringEncodings, LeaveOutTheByteOrderMarkOfUTF8) {
    EXPECT_EQ(u"a", NSString::stringWithData_encoding_(bytes("\xEF\xBB\xBF"
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
        NSString const text = NSString::stringWithData_encoding_(bytes({&single, 1}), NSMacOSRomanStringEncoding);
        EXPECT_EQ(std::u16string_view(expected, 1), text.codeUnits()) << byte;
        EXPECT_EQ(std::string(1, single), bytesOf(text.dataUsingEncoding_(NSMacOSRomanStringEncoding))) << byte;
    }
}

TEST(NSStringEncodings, GiveEveryByteOfNEXTSTEPACharacterOfItsOwn) {
    std::set<std::u16string_view::value_type> seen;
    for (int byte = 0; byte < 0xFE; ++byte) {
        char const single = static_cast<char>(byte);
        NSString const text = NSString::stringWithData_encoding_(bytes({&single, 1}), NSNEXTSTEPStringEncoding);
        ASSERT_EQ(1U, text.length()) << byte;
        EXPECT_TRUE(seen.insert(text.characterAtIndex_(0)).second) << byte;
        EXPECT_EQ(std::string(1, single), bytesOf(text.dataUsingEncoding_(NSNEXTSTEPStringEncoding))) << byte;
    }
}

struct WideBytes {
    NSStringEncoding encoding;
    std::string_view bytes;
};

TEST(NSStringEncodings, ReadWideTextInTheOrderOfItsMark) {
    for (WideBytes const& row : {
             WideBytes{NSUTF32StringEncoding, std::string_view("\0\0\xFE\xFF\0\0\x20\xAC", 8)},
             WideBytes{NSUTF32StringEncoding, std::string_view("\xFF\xFE\0\0\xAC\x20\0\0", 8)},
             WideBytes{NSUnicodeStringEncoding, "\xFE\xFF\x20\xAC"},
             WideBytes{NSUnicodeStringEncoding, "\xFF\xFE\xAC\x20"},
         })
        EXPECT_EQ(NSString::stringWithData_encoding_(bytes(row.bytes), row.encoding).codeUnits(), u"\u20AC");
}

TEST(NSStringEncodings, ReadBackWhatTheyWriteWithAMark) {
    NSString const text = "a\u20AC\U0001F601";
    for (NSStringEncoding const encoding : {NSUnicodeStringEncoding, NSUTF32StringEncoding}) {
        NSData const data = text.dataUsingEncoding_(encoding);
        EXPECT_EQ(NSString::stringWithData_encoding_(data, encoding).codeUnits(), text.codeUnits());
    }
    EXPECT_EQ(text.dataUsingEncoding_(NSUnicodeStringEncoding).length(), 2U + 8U);
    EXPECT_EQ(text.dataUsingEncoding_(NSUTF32StringEncoding).length(), 4U + 12U);
}

TEST(NSStringEncodings, AreNilForWideBytesThatAreNoText) {
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("abc"), NSUTF16BigEndianStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes("abcde"), NSUTF32StringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes(std::string_view("\0\x11\0\0", 4)),
                                                   NSUTF32BigEndianStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithData_encoding_(bytes(std::string_view("\0\0\xD8\0", 4)),
                                                   NSUTF32BigEndianStringEncoding) == nil);
    EXPECT_TRUE(NSString::stringWithCodeUnits(u"\xDC80").dataUsingEncoding_(NSUTF32StringEncoding) == nil);
}

struct Lossy {
    NSStringEncoding encoding;
    char const* text;
    char const* bytes;
};

TEST(NSStringEncodings, LoseWhatTheyCannotHoldWhereAllowed) {
    for (Lossy const& row : {
             Lossy{NSASCIIStringEncoding, "\u00C1\u00E9x", "Aex"},
             Lossy{NSASCIIStringEncoding, "e\u0301", "e"},
             Lossy{NSASCIIStringEncoding, "\u201Ca\u201D \u2019\u2014\u2026", "\"a\" '-..."},
             Lossy{NSASCIIStringEncoding, "\uFB01\u00BD\u00DF", "fi1/2ss"},
             Lossy{NSASCIIStringEncoding, "\u65E5\U0001F600", "??"},
             Lossy{NSISOLatin1StringEncoding, "\u00E9\u0105\u20AC",
                   "\xE9"
                   "a?"},
             Lossy{NSMacOSRomanStringEncoding, "\u00E9\u0105",
                   "\x8E"
                   "a"},
         })
        EXPECT_EQ(bytesOf(NSString::stringWithUTF8String_(row.text).dataUsingEncoding_allowLossyConversion_(
                      row.encoding, YES)),
                  row.bytes)
            << row.text;
}

TEST(NSStringEncodings, LoseNothingWhereItIsNotAllowed) {
    NSString const text = "\u00E9";
    EXPECT_TRUE(text.dataUsingEncoding_allowLossyConversion_(NSASCIIStringEncoding, NO) == nil);
    EXPECT_EQ(bytesOf(text.dataUsingEncoding_allowLossyConversion_(NSISOLatin1StringEncoding, YES)), "\xE9");
    EXPECT_TRUE(text.dataUsingEncoding_allowLossyConversion_(static_cast<NSStringEncoding>(77), YES) == nil);
    EXPECT_EQ(bytesOf(NSString::stringWithCodeUnits(u"a\xDC80")
                          .dataUsingEncoding_allowLossyConversion_(NSUTF8StringEncoding, YES)),
              "a?");
    EXPECT_TRUE(NSString(nil).dataUsingEncoding_allowLossyConversion_(NSUTF8StringEncoding, YES) == nil);
}

TEST(NSStringEncodings, TellWhetherTheyCanHoldAText) {
    NSString const text = "\u00E9";
    EXPECT_FALSE(text.canBeConvertedToEncoding_(NSASCIIStringEncoding));
    EXPECT_TRUE(text.canBeConvertedToEncoding_(NSISOLatin1StringEncoding));
    EXPECT_TRUE(text.canBeConvertedToEncoding_(NSUTF8StringEncoding));
    EXPECT_FALSE(text.canBeConvertedToEncoding_(static_cast<NSStringEncoding>(77)));
    EXPECT_FALSE(NSString::stringWithCodeUnits(u"\xDC80").canBeConvertedToEncoding_(NSUTF8StringEncoding));
    EXPECT_FALSE(NSString(nil).canBeConvertedToEncoding_(NSUTF8StringEncoding));
}

} // namespace

} // namespace mac::test
