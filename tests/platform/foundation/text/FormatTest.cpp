#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/text/NSString.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {

namespace {

template <class... Arguments>
std::string formatted(std::string_view format, Arguments const&... arguments) {
    return NSString::stringWithFormat_(NSString::stringWithUTF8String_(format), arguments...).UTF8String();
}

TEST(Format, PrintsIntegersAsC) {
    EXPECT_EQ("-7", formatted("%d", -7));
    EXPECT_EQ("-7", formatted("%i", -7));
    EXPECT_EQ("4294967289", formatted("%u", -7));
    EXPECT_EQ("ff", formatted("%x", 255));
    EXPECT_EQ("FF", formatted("%X", 255));
    EXPECT_EQ("377", formatted("%o", 255));
    EXPECT_EQ("   42", formatted("%5d", 42));
    EXPECT_EQ("42   |", formatted("%-5d|", 42));
    EXPECT_EQ("00042", formatted("%05d", 42));
    EXPECT_EQ("-0042", formatted("%05d", -42));
    EXPECT_EQ("+42", formatted("%+d", 42));
    EXPECT_EQ(" 42", formatted("% d", 42));
    EXPECT_EQ("+42", formatted("% +d", 42));
    EXPECT_EQ("0x2a", formatted("%#x", 42));
    EXPECT_EQ("0X2A", formatted("%#X", 42));
    EXPECT_EQ("0", formatted("%#x", 0));
    EXPECT_EQ("052", formatted("%#o", 42));
    EXPECT_EQ("0", formatted("%#o", 0));
    EXPECT_EQ("00042", formatted("%.5d", 42));
    EXPECT_EQ("   00042", formatted("%08.5d", 42));
    EXPECT_EQ("", formatted("%.0d", 0));
    EXPECT_EQ("0x002a", formatted("%#06x", 42));
    EXPECT_EQ("42   |", formatted("%-05d|", 42));
    EXPECT_EQ("1234567", formatted("%'d", 1234567));
}

TEST(Format, TakesTheSizeOfAnIntegerFromItsModifier) {
    EXPECT_EQ("-1", formatted("%hhd", 255));
    EXPECT_EQ("255", formatted("%hhu", -1));
    EXPECT_EQ("-1", formatted("%hd", 65535));
    EXPECT_EQ("65535", formatted("%hu", -1));
    EXPECT_EQ("-1", formatted("%d", 0xFFFFFFFFU));
    EXPECT_EQ("705032704", formatted("%d", 5000000000LL));
    for (char const* format : {"%ld", "%lld", "%qd", "%zd", "%td", "%jd", "%D"})
        EXPECT_EQ("5000000000", formatted(format, 5000000000LL)) << format;
    EXPECT_EQ("18446744073709551615", formatted("%llu", -1LL));
    EXPECT_EQ("18446744073709551615", formatted("%U", ~0ULL));
    EXPECT_EQ("1777777777777777777777", formatted("%O", ~0ULL));
    EXPECT_EQ("-9223372036854775808", formatted("%lld", std::numeric_limits<long long>::min()));
    EXPECT_EQ("-2147483648", formatted("%d", std::numeric_limits<int>::min()));
}

TEST(Format, PrintsANarrowArgumentAtItsOwnWidthUnderAWideUnsignedConversion) {
    EXPECT_EQ("4294967295", formatted("%lu", -1));
    EXPECT_EQ("ffffffff", formatted("%lx", -1));
}

TEST(Format, PrintsRealsAsC) {
    EXPECT_EQ("1.500000", formatted("%f", 1.5));
    EXPECT_EQ("1.5", formatted("%.1f", 1.5));
    EXPECT_EQ("2", formatted("%.0f", 1.5));
    EXPECT_EQ("2.", formatted("%#.0f", 1.5));
    EXPECT_EQ("   1.50", formatted("%7.2f", 1.5));
    EXPECT_EQ("-001.50", formatted("%07.2f", -1.5));
    EXPECT_EQ("+1.50", formatted("%+.2f", 1.5));
    EXPECT_EQ("1.500000e+00", formatted("%e", 1.5));
    EXPECT_EQ("1.5E+300", formatted("%.1E", 1.5e300));
    EXPECT_EQ("2.e+00", formatted("%#.0e", 1.5));
    EXPECT_EQ("0.0001", formatted("%g", 1e-4));
    EXPECT_EQ("1e-05", formatted("%g", 1e-5));
    EXPECT_EQ("100000", formatted("%g", 1e5));
    EXPECT_EQ("1e+06", formatted("%g", 1e6));
    EXPECT_EQ("1E+06", formatted("%G", 1e6));
    EXPECT_EQ("1.00000", formatted("%#g", 1.0));
    EXPECT_EQ("1.00000e+06", formatted("%#g", 1e6));
    EXPECT_EQ("0x1.8p+0", formatted("%a", 1.5));
    EXPECT_EQ("0X1.8P+0", formatted("%A", 1.5));
    EXPECT_EQ("0x1.p+0", formatted("%#a", 1.0));
    EXPECT_EQ("-0.000000", formatted("%f", -0.0));
    EXPECT_EQ("0.1", formatted("%Lg", 0.1L));
}

TEST(Format, PrintsInfinitiesAndNoNumber) {
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ("inf -inf +inf", formatted("%f %f %+f", infinity, -infinity, infinity));
    EXPECT_EQ("INF NAN", formatted("%F %G", infinity, std::nan("")));
    EXPECT_EQ("  inf", formatted("%05f", infinity));
    EXPECT_EQ("nan", formatted("%e", -std::nan("")));
}

TEST(Format, PrintsTheDescriptionOfAnObjectWhateverTheWidth) {
    EXPECT_EQ("a=b", formatted("%@=%@", NSString("a"), id("b")));
    EXPECT_EQ("abc", formatted("%10.1@", NSString("abc")));
    EXPECT_EQ("3", formatted("%@", NSNumber::numberWithInt_(3)));
    EXPECT_EQ("(null)", formatted("%@", NSString(nil)));
    EXPECT_EQ("(null)", formatted("%@", nil));
}

TEST(Format, PrintsText) {
    EXPECT_EQ("abc", formatted("%s", "abc"));
    EXPECT_EQ("  abc", formatted("%5s", "abc"));
    EXPECT_EQ("ab   |", formatted("%-5.2s|", std::string("abc")));
    EXPECT_EQ("\xC3\xA9", formatted("%s", std::string_view("\xC3\xA9")));
    EXPECT_EQ("abc", formatted("%S", u"abc"));
    EXPECT_EQ("  abc", formatted("%5S", std::u16string(u"abc")));
    EXPECT_EQ("(null)", formatted("%s", static_cast<char const*>(nullptr)));
    EXPECT_EQ("(null)", formatted("%10S", static_cast<char16_t const*>(nullptr)));
    EXPECT_EQ("(null)", formatted("%s", nil));
    EXPECT_EQ("x", formatted("%c", 'x'));
    EXPECT_EQ("  x", formatted("%3c", 'x'));
    EXPECT_EQ("\xE2\x82\xAC", formatted("%C", u'\u20AC'));
}

TEST(Format, EndsACharArrayAtItsFirstNul) {
    char buffer[16] = "abc";
    EXPECT_EQ("abc", formatted("%s", buffer));
}

TEST(Format, HoldsBytesThatAreNoUTF8) {
    NSString const text = NSString::stringWithFormat_("%s", std::string("a\xFF"));
    EXPECT_EQ("a\xFF", text.fileSystemRepresentation());
}

TEST(Format, PrintsAddresses) {
    EXPECT_EQ("0x0", formatted("%p", static_cast<void const*>(nullptr)));
    EXPECT_EQ("0x0", formatted("%p", nil));
    EXPECT_EQ("0x1234", formatted("%p", reinterpret_cast<void const*>(0x1234)));
    EXPECT_EQ("    0x1234", formatted("%10p", reinterpret_cast<void const*>(0x1234)));
}

TEST(Format, TakesArgumentsByPosition) {
    EXPECT_EQ("b a", formatted("%2$@ %1$@", NSString("a"), NSString("b")));
    EXPECT_EQ("a a", formatted("%1$s %1$s", "a"));
    EXPECT_EQ("   7", formatted("%2$*1$d", 4, 7));
    EXPECT_EQ("(null)", formatted("%3$@", NSString("a")));
    EXPECT_EQ("(null)", formatted("%0$@", NSString("a")));
    EXPECT_EQ("(null)", formatted("%99999999999999999999$d", 1));
}

TEST(Format, TakesWidthAndPrecisionFromArguments) {
    EXPECT_EQ("   42", formatted("%*d", 5, 42));
    EXPECT_EQ("42   |", formatted("%*d|", -5, 42));
    EXPECT_EQ("1.50", formatted("%.*f", 2, 1.5));
    EXPECT_EQ("1.500000", formatted("%.*f", -2, 1.5));
    EXPECT_EQ("   42", formatted("%*d", NSNumber::numberWithInt_(5), 42));
}

TEST(Format, PrintsNullForMissingArguments) {
    EXPECT_EQ("(null) (null) (null)", formatted("%@ %d %s"));
    EXPECT_EQ("1 (null)", formatted("%d %f", 1));
    EXPECT_EQ("(null)", formatted("%*.*f"));
    EXPECT_EQ("(null)", formatted("%p"));
}

TEST(Format, PrintsWhatItDoesNotKnowAsItStands) {
    EXPECT_EQ("%k 1", formatted("%k %d", 1));
    EXPECT_EQ("%n 1", formatted("%n %d", 1));
    EXPECT_EQ("%-5.3lk", formatted("%-5.3lk", 1));
    EXPECT_EQ("%*k 5", formatted("%*k %d", 5));
    EXPECT_EQ("%", formatted("%"));
    EXPECT_EQ("100%", formatted("100%%"));
    EXPECT_EQ("a %", formatted("a %"));
    EXPECT_EQ("%5.", formatted("%5."));
    EXPECT_EQ("%\xC3\xA9", formatted("%\xC3\xA9"));
}

TEST(Format, ConvertsBetweenKindsOfArguments) {
    EXPECT_EQ("3", formatted("%d", 3.99));
    EXPECT_EQ("2147483647", formatted("%d", 1e300));
    EXPECT_EQ("-2147483648", formatted("%d", -1e300));
    EXPECT_EQ("0", formatted("%u", -1.5));
    EXPECT_EQ("18446744073709551615", formatted("%llu", 1e300));
    EXPECT_EQ("0", formatted("%d", std::nan("")));
    EXPECT_EQ("3.000000", formatted("%f", 3));
    EXPECT_EQ("4294967295.0", formatted("%.1f", 0xFFFFFFFFU));
    EXPECT_EQ("7", formatted("%d", NSNumber::numberWithDouble_(7.5)));
    EXPECT_EQ("7.5", formatted("%.1f", NSNumber::numberWithDouble_(7.5)));
    EXPECT_EQ("12", formatted("%d", NSString("12 monkeys")));
    EXPECT_EQ("12", formatted("%d", "12 monkeys"));
    EXPECT_EQ("5 0.1", formatted("%@ %@", 5, 0.1));
    EXPECT_EQ("5", formatted("%s", 5));
    EXPECT_EQ("text", formatted("%@", "text"));
    EXPECT_EQ("1 0", formatted("%d %d", YES, NO));
    EXPECT_EQ("1634039350", formatted("%u", FourCharCode("aev6")));
}

TEST(Format, BoundsWidthAndPrecision) {
    EXPECT_EQ(65536U, formatted("%1000000000d", 1).size());
    EXPECT_EQ(65536U, formatted("%.1000000000d", 1).size());
    EXPECT_EQ(65536U + 2, formatted("%.1000000000f", 1.0).size());
    EXPECT_EQ(65536U, formatted("%*s", std::numeric_limits<int>::min(), "a").size());
    EXPECT_EQ(65536U, formatted("%99999999999999999999999999s", "a").size());
    EXPECT_EQ(100000U, formatted("%.90000000s", std::string(100000, 'x')).size());
}

TEST(Format, PrintsTheLongestReals) {
    EXPECT_EQ(309U + 7U, formatted("%f", std::numeric_limits<double>::max()).size());
    EXPECT_EQ(2U + 1074U, formatted("%.1074f", std::numeric_limits<double>::denorm_min()).size());
    EXPECT_EQ('5', formatted("%.1074f", std::numeric_limits<double>::denorm_min()).back());
}

TEST(Format, RaisesForANilFormat) { EXPECT_THROW(NSString::stringWithFormat_(nil, 1), NSInvalidArgumentException); }

TEST(Format, KeepsTextOutsideOfConversions) { EXPECT_EQ("\xF0\x9F\x98\x80 1", formatted("\xF0\x9F\x98\x80 %d", 1)); }

} // namespace

} // namespace mac::test
