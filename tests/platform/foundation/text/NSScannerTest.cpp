#include "platform/foundation/text/NSScanner.h"
#include "platform/foundation/objects/Exceptions.h"
#include <cstdint>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSScanner scanner(NSString const& string) { return NSScanner::scannerWithString_(string); }

} // namespace

TEST(NSScanner, ReadsOneThingAfterTheOther) {
    NSScanner const line = scanner("  width: 12 x 3.5e2, Name=Ida");
    int width = 0;
    double height = 0;
    NSString name = nil;
    EXPECT_TRUE(line.scanString_intoString_("width:", nullptr));
    EXPECT_TRUE(line.scanInt_(&width));
    EXPECT_TRUE(line.scanString_intoString_("x", nullptr));
    EXPECT_TRUE(line.scanDouble_(&height));
    EXPECT_TRUE(line.scanUpToString_intoString_("name=", nullptr));
    EXPECT_TRUE(line.scanString_intoString_("name=", &name));
    EXPECT_EQ(name.UTF8String(), "Name=");
    EXPECT_TRUE(line.scanCharactersFromSet_intoString_(NSCharacterSet::letterCharacterSet(), &name));
    EXPECT_EQ(name.UTF8String(), "Ida");
    EXPECT_TRUE(line.isAtEnd());
    EXPECT_EQ(width, 12);
    EXPECT_EQ(height, 350);
}

TEST(NSScanner, LeavesWhatDoesNotMatch) {
    NSScanner const text = scanner(" abc");
    int number = 7;
    NSString read = "kept";
    EXPECT_FALSE(text.scanInt_(&number));
    EXPECT_FALSE(text.scanDouble_(nullptr));
    EXPECT_FALSE(text.scanString_intoString_("b", &read));
    EXPECT_FALSE(text.scanUpToString_intoString_("a", &read));
    EXPECT_FALSE(text.scanCharactersFromSet_intoString_(NSCharacterSet::decimalDigitCharacterSet(), &read));
    EXPECT_FALSE(text.scanUpToCharactersFromSet_intoString_(NSCharacterSet::letterCharacterSet(), &read));
    EXPECT_EQ(text.scanLocation(), 0U);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(read.UTF8String(), "kept");
}

TEST(NSScanner, ReadsNumbersThatSaturate) {
    int integer = 0;
    NSInteger same = 0;
    long long wide = 0;
    unsigned hexadecimal = 0;
    float single = 0;
    EXPECT_TRUE(scanner("99999999999").scanInt_(&integer));
    EXPECT_EQ(integer, INT32_MAX);
    EXPECT_TRUE(scanner("-99999999999").scanInteger_(&same));
    EXPECT_EQ(same, INT32_MIN);
    EXPECT_TRUE(scanner("-99999999999").scanLongLong_(&wide));
    EXPECT_EQ(wide, -99999999999);
    EXPECT_TRUE(scanner("0xFFg").scanHexInt_(&hexadecimal));
    EXPECT_EQ(hexadecimal, 0xFFU);
    EXPECT_TRUE(scanner("1fffffffff").scanHexInt_(&hexadecimal));
    EXPECT_EQ(hexadecimal, UINT32_MAX);
    EXPECT_TRUE(scanner("0xg").scanHexInt_(&hexadecimal));
    EXPECT_EQ(hexadecimal, 0U);
    EXPECT_FALSE(scanner("g").scanHexInt_(&hexadecimal));
    EXPECT_TRUE(scanner("+.5e").scanFloat_(&single));
    EXPECT_EQ(single, 0.5F);
    EXPECT_FALSE(scanner("-").scanInt_(nullptr));
    EXPECT_FALSE(scanner(".").scanDouble_(nullptr));
}

// Copying, or looking through, what is left at each step has no end here.
TEST(NSScanner, ComesToTheEndOfALongText) {
    for (char16_t const letter : {u'a', u'\u65E5'}) {
        constexpr int lines = 20000;
        std::u16string text;
        for (int line = 0; line < lines; ++line)
            text.append(3, letter).append(u"\nx ");
        NSScanner const scanner = NSScanner::scannerWithString_(NSString::stringWithCodeUnits(text));
        int count = 0;
        NSString word;
        while (scanner.scanUpToString_intoString_("\nx", &word) && scanner.scanString_intoString_("X", nullptr)) {
            EXPECT_EQ(word.length(), 3U);
            ++count;
        }
        EXPECT_EQ(count, lines);
        EXPECT_TRUE(scanner.isAtEnd());
    }
}

TEST(NSScanner, MindsTheCaseWhereAsked) {
    NSScanner const text = scanner("ABC");
    EXPECT_FALSE(text.caseSensitive());
    text.setCaseSensitive_(YES);
    EXPECT_FALSE(text.scanString_intoString_("abc", nullptr));
    text.setCaseSensitive_(NO);
    EXPECT_TRUE(text.scanString_intoString_("abc", nullptr));
}

TEST(NSScanner, SkipsWhatItIsTold) {
    NSScanner const text = scanner("--a b");
    text.setCharactersToBeSkipped_(NSCharacterSet::characterSetWithCharactersInString_("-"));
    EXPECT_TRUE(text.scanString_intoString_("a", nullptr));
    EXPECT_FALSE(text.scanString_intoString_("b", nullptr));
    text.setCharactersToBeSkipped_(nil);
    EXPECT_TRUE(text.charactersToBeSkipped() == nil);
    EXPECT_TRUE(text.scanString_intoString_(" b", nullptr));
    EXPECT_TRUE(scanner(" \n").isAtEnd());
}

TEST(NSScanner, GoesToAPlace) {
    NSScanner const text = scanner("abc");
    text.setScanLocation_(2);
    EXPECT_TRUE(text.scanString_intoString_("c", nullptr));
    EXPECT_EQ(text.scanLocation(), 3U);
    EXPECT_THROW(text.setScanLocation_(4), NSRangeException);
    EXPECT_EQ(text.string().UTF8String(), "abc");
}

TEST(NSScanner, RaisesForNil) {
    EXPECT_THROW(NSScanner::scannerWithString_(nil), NSInvalidArgumentException);
    EXPECT_THROW(scanner("a").scanString_intoString_(nil, nullptr), NSInvalidArgumentException);
    EXPECT_THROW(scanner("a").scanUpToString_intoString_(nil, nullptr), NSInvalidArgumentException);
    EXPECT_THROW(scanner("a").scanCharactersFromSet_intoString_(nil, nullptr), NSInvalidArgumentException);
    EXPECT_THROW(scanner("a").scanUpToCharactersFromSet_intoString_(nil, nullptr), NSInvalidArgumentException);
}

TEST(NSScanner, AnswersNothingForNil) {
    NSScanner const none = nil;
    EXPECT_TRUE(none.string() == nil);
    EXPECT_TRUE(none.isAtEnd());
    EXPECT_EQ(none.scanLocation(), 0U);
    EXPECT_FALSE(none.scanInt_(nullptr));
    EXPECT_FALSE(none.scanInteger_(nullptr));
    EXPECT_FALSE(none.scanLongLong_(nullptr));
    EXPECT_FALSE(none.scanHexInt_(nullptr));
    EXPECT_FALSE(none.scanFloat_(nullptr));
    EXPECT_FALSE(none.scanDouble_(nullptr));
    EXPECT_FALSE(none.scanString_intoString_("a", nullptr));
    EXPECT_FALSE(none.scanUpToString_intoString_("a", nullptr));
    EXPECT_FALSE(none.scanCharactersFromSet_intoString_(NSCharacterSet::letterCharacterSet(), nullptr));
    EXPECT_FALSE(none.scanUpToCharactersFromSet_intoString_(NSCharacterSet::letterCharacterSet(), nullptr));
    EXPECT_FALSE(none.caseSensitive());
    EXPECT_TRUE(none.charactersToBeSkipped() == nil);
    none.setScanLocation_(9);
    none.setCaseSensitive_(YES);
    none.setCharactersToBeSkipped_(nil);
}

} // namespace mac::test
