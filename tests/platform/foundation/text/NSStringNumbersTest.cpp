#include "platform/foundation/text/NSString.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {

namespace {

constexpr double TooLarge = std::numeric_limits<double>::infinity();

struct IntegerText {
    std::u16string_view text;
    long long value;
};

TEST(NSStringNumbers, ReadsAnIntegerAtTheStart) {
    for (IntegerText const& number : {
             IntegerText{u"42", 42},        IntegerText{u"-42", -42},
             IntegerText{u"+42", 42},       IntegerText{u" \t\n\u00A0\u3000 42", 42},
             IntegerText{u"\u0001 42", 42}, IntegerText{u"\u007F\u0093\u00A0\u2000\u200B42", 42},
             IntegerText{u"\u202F42", 0},   IntegerText{u"\u1680 42", 0},
             IntegerText{u"\u205F42", 0},   IntegerText{u"\u202842", 0},
             IntegerText{u"42abc", 42},     IntegerText{u"4 2", 4},
             IntegerText{u"3.99", 3},       IntegerText{u"007", 7},
             IntegerText{u"0x10", 0},       IntegerText{u"", 0},
             IntegerText{u"abc", 0},        IntegerText{u"-", 0},
             IntegerText{u"--5", 0},        IntegerText{u"+-5", 0},
             IntegerText{u"- 5", 0},        IntegerText{u"\u0664", 0},
             IntegerText{u"\uFF15", 0},
         }) {
        NSString const text = NSString::stringWithCodeUnits(number.text);
        EXPECT_EQ(number.value, text.intValue()) << text.UTF8String();
        EXPECT_EQ(number.value, text.integerValue()) << text.UTF8String();
        EXPECT_EQ(number.value, text.longLongValue()) << text.UTF8String();
    }
}

TEST(NSStringNumbers, SaturatesIntegers) {
    EXPECT_EQ(2147483647, NSString("2147483647").intValue());
    EXPECT_EQ(2147483647, NSString("2147483648").intValue());
    EXPECT_EQ(2147483647, NSString("99999999999999999999999").intValue());
    EXPECT_EQ(-2147483647 - 1, NSString("-2147483648").intValue());
    EXPECT_EQ(-2147483647 - 1, NSString("-2147483649").intValue());
    EXPECT_EQ(std::numeric_limits<long long>::max(), NSString("9223372036854775807").longLongValue());
    EXPECT_EQ(std::numeric_limits<long long>::max(), NSString("9223372036854775808").longLongValue());
    EXPECT_EQ(std::numeric_limits<long long>::min(), NSString("-9223372036854775808").longLongValue());
    EXPECT_EQ(std::numeric_limits<long long>::min(), NSString("-99999999999999999999").longLongValue());
}

struct RealText {
    std::string_view text;
    double value;
};

TEST(NSStringNumbers, ReadsAReal) {
    for (RealText const& number : {
             RealText{"1.5", 1.5},
             RealText{"  -1.5e3xyz", -1500},
             RealText{".5", 0.5},
             RealText{"5.", 5},
             RealText{"1e2", 100},
             RealText{"1E+2", 100},
             RealText{"1e-2", 0.01},
             RealText{"1e", 1},
             RealText{"1e+", 1},
             RealText{"1,5", 1},
             RealText{"0.1", 0.1},
             RealText{"0x1p3", 0},
             RealText{"inf", 0},
             RealText{"nan", 0},
             RealText{".", 0},
             RealText{"", 0},
             RealText{"e5", 0},
             RealText{"1e999", TooLarge},
             RealText{"-1e999", -TooLarge},
             RealText{"1e99999999999999999999", TooLarge},
             RealText{"1e-99999999999999999999", 0},
             RealText{"1e-999", 0},
             RealText{"0e99999", 0},
             RealText{"0.000e99999", 0},
             RealText{"0.00001e400", TooLarge},
             RealText{"4.9e-324", 4.9e-324},
         })
        EXPECT_EQ(number.value, NSString::stringWithUTF8String_(number.text).doubleValue()) << number.text;
}

TEST(NSStringNumbers, ReadsRealsOfManyDigits) {
    std::string const zeros(500, '0');
    EXPECT_EQ(TooLarge, NSString::stringWithUTF8String_("1" + zeros + "e-1").doubleValue());
    EXPECT_EQ(0, NSString::stringWithUTF8String_("0." + zeros + "1e5").doubleValue());
    EXPECT_EQ(10, NSString::stringWithUTF8String_("0." + zeros + "1e502").doubleValue());
}

TEST(NSStringNumbers, GivesTheSignOnlyToANumber) {
    EXPECT_FALSE(std::signbit(NSString("-").doubleValue()));
    EXPECT_TRUE(std::signbit(NSString("-0").doubleValue()));
}

TEST(NSStringNumbers, SaturatesFloatsToInfinity) {
    EXPECT_EQ(1.5F, NSString("1.5").floatValue());
    EXPECT_EQ(std::numeric_limits<float>::max(), NSString("3.4028235e38").floatValue());
    EXPECT_EQ(HUGE_VALF, NSString("3.4028236e38").floatValue());
    EXPECT_EQ(HUGE_VALF, NSString("1e39").floatValue());
    EXPECT_EQ(-HUGE_VALF, NSString("-1e39").floatValue());
}

TEST(NSStringNumbers, ReadsATruthValue) {
    for (char const* text :
         {"Y", "y", "YES", "yes", "T", "true", "1", "9", " yes", "\n1", "+1", "-1", "-y", "01", "0007", "00Y", "+0t"})
        EXPECT_TRUE(NSString::stringWithUTF8String_(text).boolValue()) << text;
    for (char const* text : {"", "N", "no", "false", "0", "00", "+", "--1", "on", "0.5", "- 1", "x1"})
        EXPECT_FALSE(NSString::stringWithUTF8String_(text).boolValue()) << text;
}

} // namespace

} // namespace mac::test
