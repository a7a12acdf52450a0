#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/dates/NSDate.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
double const NoNumber = std::nan("");

NSNumber real(double value) { return NSNumber::numberWithDouble_(value); }
NSNumber whole(long long value) { return NSNumber::numberWithLongLong_(value); }
NSNumber large(unsigned long long value) { return NSNumber::numberWithUnsignedLongLong_(value); }

} // namespace

TEST(NSNumber, IsEqualByValueAcrossKinds) {
    NSNumber const ones[]{whole(1),
                          real(1),
                          NSNumber::numberWithBool_(YES),
                          NSNumber::numberWithFloat_(1),
                          large(1),
                          NSNumber::numberWithInt_(1),
                          NSNumber::numberWithUnsignedInt_(1)};
    for (NSNumber const& one : ones) {
        for (NSNumber const& other : ones) {
            EXPECT_TRUE(one.isEqual_(other));
            EXPECT_EQ(one.hash(), other.hash());
            EXPECT_EQ(NSOrderedSame, one.compare_(other));
        }
    }
}

TEST(NSNumber, NeverEqualsAnotherClass) {
    EXPECT_FALSE(whole(1).isEqual_(NSString("1")));
    EXPECT_FALSE(NSString("1").isEqual_(whole(1)));
    EXPECT_FALSE(whole(0).isEqual_(nil));
    EXPECT_FALSE(real(0).isEqual_(NSDate::dateWithTimeIntervalSinceReferenceDate_(0)));
}

// From the smallest to the largest; each differs from all the others.
TEST(NSNumber, IsComparedExactly) {
    NSNumber const numbers[]{
        real(-Infinity),
        real(-1e300),
        whole(std::numeric_limits<long long>::min()),
        whole(std::numeric_limits<long long>::min() + 1),
        whole(-9007199254740993),
        real(-9007199254740992.0),
        real(-1.5),
        whole(-1),
        real(-std::numeric_limits<double>::denorm_min()),
        real(NoNumber),
        whole(0),
        real(0.5),
        whole(1),
        real(1.5),
        real(9007199254740992.0),
        whole(9007199254740993),
        whole(std::numeric_limits<long long>::max()),
        real(9223372036854775808.0),
        large(9223372036854775809U),
        large(std::numeric_limits<unsigned long long>::max()),
        real(18446744073709551616.0),
        real(Infinity),
    };
    for (std::size_t first = 0; first < std::size(numbers); ++first) {
        for (std::size_t second = 0; second < std::size(numbers); ++second) {
            int const order = first < second ? -1 : (first > second ? 1 : 0);
            EXPECT_EQ(order, numbers[first].compare_(numbers[second])) << first << " : " << second;
            EXPECT_EQ(order == 0, numbers[first].isEqual_(numbers[second])) << first << " : " << second;
        }
    }
}

TEST(NSNumber, HashesEqualNumbersAlike) {
    EXPECT_EQ(whole(-5).hash(), real(-5).hash());
    EXPECT_EQ(real(0.0).hash(), real(-0.0).hash());
    EXPECT_TRUE(real(0.0).isEqual_(real(-0.0)));
    EXPECT_EQ(whole(0).hash(), real(-0.0).hash());
    EXPECT_EQ(large(9223372036854775808U).hash(), real(9223372036854775808.0).hash());
    EXPECT_TRUE(large(9223372036854775808U).isEqual_(real(9223372036854775808.0)));
    EXPECT_EQ(whole(std::numeric_limits<long long>::min()).hash(), real(-9223372036854775808.0).hash());
    EXPECT_EQ(real(NoNumber).hash(), real(-NoNumber).hash());
    EXPECT_TRUE(real(NoNumber).isEqual_(real(-NoNumber)));
    EXPECT_EQ(real(0.5).hash(), NSNumber::numberWithFloat_(0.5F).hash());
}

TEST(NSNumber, SaturatesFromReals) {
    EXPECT_EQ(std::numeric_limits<int>::max(), real(1e300).intValue());
    EXPECT_EQ(std::numeric_limits<int>::min(), real(-1e300).intValue());
    EXPECT_EQ(std::numeric_limits<int>::max(), real(2147483647.5).intValue());
    EXPECT_EQ(0, real(NoNumber).intValue());
    EXPECT_EQ(-1, real(-1.9).intValue());
    EXPECT_EQ(0U, real(-1).unsignedIntValue());
    EXPECT_EQ(4294967295U, real(1e10).unsignedIntValue());
    EXPECT_EQ(std::numeric_limits<long long>::max(), real(9223372036854775808.0).longLongValue());
    EXPECT_EQ(std::numeric_limits<long long>::min(), real(-Infinity).longLongValue());
    EXPECT_EQ(std::numeric_limits<unsigned long long>::max(), real(Infinity).unsignedLongLongValue());
    EXPECT_EQ(0U, real(-0.5).unsignedLongLongValue());
    EXPECT_EQ(std::numeric_limits<float>::max(), real(3.4028235e38).floatValue());
    EXPECT_EQ(HUGE_VALF, real(1e39).floatValue());
    EXPECT_EQ(-HUGE_VALF, real(-1e39).floatValue());
    EXPECT_TRUE(std::isnan(real(NoNumber).floatValue()));
}

TEST(NSNumber, WrapsBetweenIntegers) {
    EXPECT_EQ(1, whole(4294967297).intValue());
    EXPECT_EQ(4294967295U, whole(-1).unsignedIntValue());
    EXPECT_EQ(std::numeric_limits<unsigned long long>::max(), whole(-1).unsignedLongLongValue());
    EXPECT_EQ(-1, large(std::numeric_limits<unsigned long long>::max()).longLongValue());
    EXPECT_EQ(18446744073709551615.0, large(std::numeric_limits<unsigned long long>::max()).doubleValue());
}

TEST(NSNumber, IsTrueUnlessZero) {
    EXPECT_TRUE(whole(-1).boolValue());
    EXPECT_TRUE(whole(4294967296).boolValue());
    EXPECT_TRUE(real(0.1).boolValue());
    EXPECT_FALSE(real(-0.0).boolValue());
    EXPECT_FALSE(whole(0).boolValue());
}

struct NumberText {
    NSNumber number;
    std::string_view text;
};

TEST(NSNumber, DescribesItself) {
    for (NumberText const& row : {
             NumberText{NSNumber::numberWithBool_(YES), "1"},
             NumberText{NSNumber::numberWithBool_(NO), "0"},
             NumberText{whole(-42), "-42"},
             NumberText{whole(std::numeric_limits<long long>::min()), "-9223372036854775808"},
             NumberText{large(std::numeric_limits<unsigned long long>::max()), "18446744073709551615"},
             NumberText{real(0.1), "0.1"},
             NumberText{real(1), "1"},
             NumberText{real(-1.5), "-1.5"},
             NumberText{real(1.0 / 3), "0.3333333333333333"},
             NumberText{real(1e15), "1000000000000000"},
             NumberText{real(1e16), "1e+16"},
             NumberText{real(0.1 + 0.2), "0.3"},
             NumberText{real(5e-324), "4.940656458412465e-324"},
             NumberText{real(1e300), "1e+300"},
             NumberText{real(0.0001), "0.0001"},
             NumberText{real(0.00001), "1e-05"},
             NumberText{real(-0.0), "-0"},
             NumberText{real(Infinity), "inf"},
             NumberText{real(-Infinity), "-inf"},
             NumberText{real(NoNumber), "nan"},
             NumberText{real(-NoNumber), "nan"},
             NumberText{NSNumber::numberWithFloat_(0.1F), "0.1"},
             NumberText{NSNumber::numberWithFloat_(1.0F / 3), "0.3333333"},
             NumberText{NSNumber::numberWithFloat_(16777216.0F), "1.677722e+07"},
             NumberText{NSNumber::numberWithFloat_(3.4e38F), "3.4e+38"},
         }) {
        EXPECT_EQ(row.text, row.number.description().UTF8String());
        EXPECT_EQ(row.text, row.number.stringValue().UTF8String());
    }
}

TEST(NSNumber, KnowsHowItWasMade) {
    EXPECT_EQ(NSNumber::Kind::Boolean, NSNumber::numberWithBool_(YES).kind());
    EXPECT_EQ(NSNumber::Kind::Signed, whole(1).kind());
    EXPECT_EQ(NSNumber::Kind::Signed, large(9223372036854775807U).kind());
    EXPECT_EQ(NSNumber::Kind::Unsigned, large(9223372036854775808U).kind());
    EXPECT_EQ(NSNumber::Kind::Real, real(1).kind());
}

TEST(NSNumber, HasOneObjectForEachTruthValue) {
    EXPECT_TRUE(isSame(NSNumber::numberWithBool_(YES), NSNumber::numberWithBool_(YES)));
    EXPECT_FALSE(isSame(NSNumber::numberWithBool_(YES), NSNumber::numberWithBool_(NO)));
}

TEST(NSNumber, AnswersNothingForNil) {
    NSNumber const none = nil;
    EXPECT_FALSE(none.boolValue());
    EXPECT_EQ(0, none.intValue());
    EXPECT_EQ(0.0, none.doubleValue());
    EXPECT_EQ(0.0F, none.floatValue());
    EXPECT_EQ(0U, none.unsignedLongLongValue());
    EXPECT_TRUE(none.stringValue() == nil);
    EXPECT_EQ(NSOrderedSame, none.compare_(whole(1)));
    EXPECT_FALSE(none.isEqualToNumber_(none));
}

TEST(NSNumber, AnswersMessagesBySelector) {
    EXPECT_EQ("7", as<NSString>(whole(7).performSelector_("stringValue")).UTF8String());
    EXPECT_TRUE(as<NSNumber>(whole(7).performSelector_("boolValue")).boolValue());
    EXPECT_EQ(7.5, as<NSNumber>(real(7.5).performSelector_("doubleValue")).doubleValue());
    EXPECT_EQ(-1, as<NSNumber>(whole(1).performSelector_withObject_("compare:", whole(2))).intValue());
}

TEST(NSNumber, IsItsOwnCopy) {
    NSNumber const number = real(2.5);
    EXPECT_TRUE(isSame(number, number.copy()));
}

} // namespace mac::test
