#include "platform/foundation/numbers/NSNumberFormatter.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/foundation/objects/Parcel.h"
#include <QLocale>
#include <cmath>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSNumberFormatter formatter(NSString const& format) {
    NSNumberFormatter const result = NSNumberFormatter::alloc().init();
    result.setFormat_(format);
    return result;
}

std::string formatted(NSString const& format, double value) {
    return formatter(format).stringFromNumber_(NSNumber::numberWithDouble_(value)).UTF8String();
}

struct FormattedNumber {
    char const* format;
    double value;
    char const* text;
};

} // namespace

TEST(NSNumberFormatter, PrintsByTheFormat) {
    for (FormattedNumber const& row : {
             FormattedNumber{"0.0;0;-0.0", 1.5, "1.5"},
             FormattedNumber{"0.0;0;-0.0", 0, "0"},
             FormattedNumber{"0.0;0;-0.0", -0.0, "0"},
             FormattedNumber{"0.0;0;-0.0", -1.5, "-1.5"},
             FormattedNumber{"0.0;0;-0.0", 0.01, "0.0"},
             FormattedNumber{"0.0;0;-0.0", -0.01, "-0.0"},
             FormattedNumber{"0.0;0;-0.0", 1234567.25, "1234567.2"},
             FormattedNumber{"0", 7.4, "7"},
             FormattedNumber{"000", 7, "007"},
             FormattedNumber{"0.00", 1, "1.00"},
             FormattedNumber{"0.00", -1, "-1.00"},
             FormattedNumber{"#.##", 0.5, ".5"},
             FormattedNumber{"#.##", 0, "0"},
             FormattedNumber{"#.##", 12, "12"},
             FormattedNumber{"0.0##", 1.25, "1.25"},
             FormattedNumber{"0.0##", 1.20, "1.2"},
             FormattedNumber{"0.0##", 1.0006, "1.001"},
             FormattedNumber{"#,##0.00", 1234567.891, "1,234,567.89"},
             FormattedNumber{"#,##0.00", 999, "999.00"},
             FormattedNumber{"#,##0", 1000, "1,000"},
             FormattedNumber{"#,##0.00;(#,##0.00)", -1234.5, "(1,234.50)"},
             FormattedNumber{"#,##0.00;(#,##0.00)", 0, "0.00"},
             FormattedNumber{"0;none;-0", 0, "none"},
             FormattedNumber{"$0.00 each", 2.5, "$2.50 each"},
             FormattedNumber{"0", 1e20, "100000000000000000000"},
             FormattedNumber{"0.0000000000", 1e-9, "0.0000000010"},
             FormattedNumber{"0.0", 1e-300, "0.0"},
             FormattedNumber{"plain", 5, "plain"},
             FormattedNumber{"", 5, ""},
         })
        EXPECT_EQ(formatted(NSString::stringWithUTF8String_(row.format), row.value), row.text)
            << row.format << " " << row.value;
}

TEST(NSNumberFormatter, RoundsTiesToTheEvenDigit) {
    for (FormattedNumber const& row : {
             FormattedNumber{"0", 0.5, "0"},
             FormattedNumber{"0", 1.5, "2"},
             FormattedNumber{"0", 2.5, "2"},
             FormattedNumber{"0", 2.50001, "3"},
             FormattedNumber{"0", -2.5, "-2"},
             FormattedNumber{"0.0", 0.25, "0.2"},
             FormattedNumber{"0.0", 0.35, "0.4"},
             FormattedNumber{"0.0", 9.95, "10.0"},
             FormattedNumber{"0.00", 2.675, "2.68"},
             FormattedNumber{"0", 99.5, "100"},
             FormattedNumber{"0", 0.6, "1"},
             FormattedNumber{"0.0", 0.06, "0.1"},
         })
        EXPECT_EQ(formatted(NSString::stringWithUTF8String_(row.format), row.value), row.text) << row.value;
}

TEST(NSNumberFormatter, PrintsWholeNumbersWithoutAFormat) {
    NSNumberFormatter const plain = NSNumberFormatter::alloc().init();
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithDouble_(1234.5))), "1234");
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithUnsignedLongLong_(UINT64_MAX))), "18446744073709551615");
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithLongLong_(INT64_MIN))), "-9223372036854775808");
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithBool_(YES))), "1");
}

TEST(NSNumberFormatter, HasSymbolsForNotANumber) {
    NSNumberFormatter const plain = formatter("0.0");
    EXPECT_EQ(text(plain.stringFromNumber_(nil)), "");
    EXPECT_EQ(formatted("0.0", std::nan("")), "NaN");
    EXPECT_EQ(formatted("0.0", HUGE_VAL), "+∞");
    EXPECT_EQ(formatted("0.0", -HUGE_VAL), "-∞");
    plain.setNilSymbol_("none");
    plain.setNotANumberSymbol_("odd");
    EXPECT_EQ(text(plain.stringFromNumber_(nil)), "none");
    EXPECT_EQ(text(plain.nilSymbol()), "none");
    EXPECT_EQ(text(plain.notANumberSymbol()), "odd");
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithDouble_(std::nan("")))), "odd");
}

TEST(NSNumberFormatter, FormatsObjectsThatAreNumbers) {
    NSNumberFormatter const plain = formatter("0.0");
    EXPECT_EQ(text(plain.stringForObjectValue_(NSNumber::numberWithInt_(3))), "3.0");
    EXPECT_EQ(text(plain.stringForObjectValue_(nil)), "");
    EXPECT_TRUE(plain.stringForObjectValue_("3") == nil);
}

TEST(NSNumberFormatter, TellsItsFormats) {
    NSNumberFormatter const plain = formatter("0.0");
    EXPECT_EQ(text(plain.format()), "0.0;0.0;-0.0");
    EXPECT_EQ(text(formatter("a0;b0;c0;d").format()), "a0;b0;c0;d");
    plain.setPositiveFormat_("0.00");
    EXPECT_EQ(text(plain.positiveFormat()), "0.00");
    EXPECT_EQ(text(plain.negativeFormat()), "-0.00");
    plain.setNegativeFormat_("(0)");
    EXPECT_EQ(text(plain.format()), "0.00;0.00;(0)");
    EXPECT_THROW(plain.setFormat_(nil), NSInvalidArgumentException);
}

TEST(NSNumberFormatter, SeparatesAsItIsTold) {
    NSNumberFormatter const plain = formatter("0.0");
    EXPECT_FALSE(plain.hasThousandSeparators());
    plain.setHasThousandSeparators_(YES);
    plain.setThousandSeparator_(" ");
    plain.setDecimalSeparator_("·");
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithInt_(1234567))), "1 234 567·0");
    plain.setHasThousandSeparators_(NO);
    EXPECT_EQ(text(plain.stringFromNumber_(NSNumber::numberWithInt_(1234567))), "1234567·0");
    EXPECT_TRUE(formatter("#,##0").hasThousandSeparators());
}

TEST(NSNumberFormatter, FollowsTheUsersLocaleWhereAsked) {
    NSNumberFormatter const local = formatter("#,##0.0");
    EXPECT_EQ(text(local.decimalSeparator()), ".");
    EXPECT_FALSE(local.localizesFormat());
    local.setLocalizesFormat_(YES);
    EXPECT_TRUE(local.localizesFormat());
    std::string const point = QLocale().decimalPoint().toStdString();
    std::string const group = QLocale().groupSeparator().toStdString();
    EXPECT_EQ(text(local.decimalSeparator()), point);
    EXPECT_EQ(text(local.thousandSeparator()), group);
    NSNumber const number = NSNumber::numberWithDouble_(1234.5);
    EXPECT_EQ(text(local.stringFromNumber_(number)), "1" + group + "234" + point + "5");
    EXPECT_EQ(local.numberFromString_(local.stringFromNumber_(number)).doubleValue(), 1234.5);
    local.setDecimalSeparator_("!");
    EXPECT_EQ(text(local.decimalSeparator()), "!");
}

struct ReadNumber {
    char const* text;
    char const* value;
};

TEST(NSNumberFormatter, ReadsWhatItPrints) {
    for (ReadNumber const& row : {
             ReadNumber{"1,234.50", "1234.5"},
             ReadNumber{"1234.5", "1234.5"},
             ReadNumber{"12", "12"},
             ReadNumber{"(12.25)", "-12.25"},
             ReadNumber{"zero", "0"},
             ReadNumber{".5", "0.5"},
             ReadNumber{"5.", "5"},
             ReadNumber{"9223372036854775807", "9223372036854775807"},
             ReadNumber{"9223372036854775808", "9223372036854775808"},
             ReadNumber{"18446744073709551615", "18446744073709551615"},
             ReadNumber{"(9223372036854775808)", "-9223372036854775808"},
             ReadNumber{"100000000000000000000", "1e+20"},
         })
        EXPECT_EQ(
            text(formatter("#,##0.00;zero;(#,##0.00)").numberFromString_(NSString::stringWithUTF8String_(row.text))),
            row.value);
}

TEST(NSNumberFormatter, ReadsNumbersThatNoDoubleHolds) {
    NSNumberFormatter const plain = formatter("0.#;(0.#)");
    NSString const many = NSString("").stringByPaddingToLength_withString_startingAtIndex_(400, "9", 0);
    NSString const tiny = NSString::stringWithFormat_(
        "0.%@1", NSString("").stringByPaddingToLength_withString_startingAtIndex_(400, "0", 0));
    EXPECT_EQ(plain.numberFromString_(many).doubleValue(), HUGE_VAL);
    EXPECT_EQ(plain.numberFromString_(NSString::stringWithFormat_("(%@.5)", many)).doubleValue(), -HUGE_VAL);
    NSNumber const small = plain.numberFromString_(tiny);
    ASSERT_TRUE(small != nil);
    EXPECT_EQ(small.doubleValue(), 0);
}

TEST(NSNumberFormatter, ReadsNothingElse) {
    NSNumberFormatter const plain = formatter("#,##0.00;zero;(#,##0.00)");
    for (std::string_view const bad :
         {"", ".", "x", "12x", "1.2.3", "1.2,3", ",1", "-12", "(12", "12)", "1e5", " 1", "1 ", "nan"})
        EXPECT_TRUE(plain.numberFromString_(NSString::stringWithUTF8String_(bad)) == nil) << bad;
    EXPECT_TRUE(plain.numberFromString_(nil) == nil);
    EXPECT_TRUE(formatter("0").numberFromString_("1,000") == nil);
}

TEST(NSNumberFormatter, AnswersNothingForNil) {
    NSNumberFormatter const none = nil;
    EXPECT_TRUE(none.init() == nil);
    EXPECT_TRUE(none.format() == nil);
    EXPECT_TRUE(none.positiveFormat() == nil);
    EXPECT_TRUE(none.negativeFormat() == nil);
    EXPECT_TRUE(none.decimalSeparator() == nil);
    EXPECT_TRUE(none.thousandSeparator() == nil);
    EXPECT_TRUE(none.nilSymbol() == nil);
    EXPECT_TRUE(none.notANumberSymbol() == nil);
    EXPECT_FALSE(none.localizesFormat());
    EXPECT_FALSE(none.hasThousandSeparators());
    EXPECT_TRUE(none.stringFromNumber_(NSNumber::numberWithInt_(1)) == nil);
    EXPECT_TRUE(none.numberFromString_("1") == nil);
    none.setFormat_("0");
    none.setPositiveFormat_("0");
    none.setNegativeFormat_("0");
    none.setLocalizesFormat_(YES);
    none.setDecimalSeparator_(",");
    none.setThousandSeparator_(",");
    none.setHasThousandSeparators_(YES);
    none.setNilSymbol_("");
    none.setNotANumberSymbol_("");
}

} // namespace mac::test
