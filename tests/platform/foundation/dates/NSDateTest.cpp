#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/text/NSString.h"
#include <cmath>
#include <ctime>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSDate at(NSTimeInterval seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate_(seconds); }

} // namespace

TEST(NSDate, CountsFromTheReferenceDate) {
    EXPECT_EQ(5.0, at(5).timeIntervalSinceReferenceDate());
    EXPECT_EQ(978307205.0, at(5).timeIntervalSince1970());
    EXPECT_EQ(-978307200.0, NSDate::dateWithTimeIntervalSince1970_(0).timeIntervalSinceReferenceDate());
    EXPECT_EQ(3.0, at(5).timeIntervalSinceDate_(at(2)));
}

TEST(NSDate, IsNowWithinTheClock) {
    double const before = static_cast<double>(std::time(nullptr));
    double const now = NSDate::date().timeIntervalSince1970();
    EXPECT_LE(before - 1, now);
    EXPECT_GE(static_cast<double>(std::time(nullptr)) + 2, now);
    EXPECT_GT(NSDate::dateWithTimeIntervalSinceNow_(1000).timeIntervalSinceNow(), 900);
    EXPECT_LT(at(0).timeIntervalSinceNow(), 0);
}

struct DateText {
    double seconds;
    std::string_view text;
};

TEST(NSDate, DescribesItselfInUniversalTime) {
    for (DateText const& row : {
             DateText{0, "2001-01-01 00:00:00 +0000"},
             DateText{86399.999, "2001-01-01 23:59:59 +0000"},
             DateText{-0.5, "2000-12-31 23:59:59 +0000"},
             DateText{-26524800, "2000-02-29 00:00:00 +0000"},
             DateText{-978307200, "1970-01-01 00:00:00 +0000"},
             DateText{-978307201, "1969-12-31 23:59:59 +0000"},
             DateText{-13197600000, "1582-10-15 00:00:00 +0000"},
             DateText{-13197600001, "1582-10-04 23:59:59 +0000"},
             DateText{252423993599, "9999-12-31 23:59:59 +0000"},
             DateText{252423993600, "10000-01-01 00:00:00 +0000"},
         })
        EXPECT_EQ(row.text, at(row.seconds).description().UTF8String());
}

TEST(NSDate, DescribesTheEndsOfTime) {
    EXPECT_EQ("4001-01-01 00:00:00 +0000", NSDate::distantFuture().description().UTF8String());
    EXPECT_EQ("0001-01-01 00:00:00 +0000", NSDate::distantPast().description().UTF8String());
    EXPECT_EQ("inf", at(HUGE_VAL).description().UTF8String());
    EXPECT_EQ("nan", at(std::nan("")).description().UTF8String());
}

TEST(NSDate, IsEqualByMoment) {
    EXPECT_TRUE(at(1).isEqual_(at(1)));
    EXPECT_TRUE(at(1).isEqualToDate_(at(1)));
    EXPECT_EQ(at(0.0).hash(), at(-0.0).hash());
    EXPECT_FALSE(at(1).isEqual_(at(1.5)));
    EXPECT_FALSE(at(1).isEqual_(NSString("1")));
    NSDate const odd = at(std::nan(""));
    EXPECT_TRUE(odd.isEqual_(odd));
}

TEST(NSDate, IsOrderedByMoment) {
    EXPECT_EQ(NSOrderedAscending, at(1).compare_(at(2)));
    EXPECT_EQ(NSOrderedDescending, at(2).compare_(at(1)));
    EXPECT_EQ(NSOrderedSame, at(2).compare_(at(2)));
    EXPECT_EQ(NSOrderedAscending, NSDate::distantPast().compare_(NSDate::distantFuture()));
    EXPECT_EQ(NSOrderedSame, at(2).compare_(nil));
}

TEST(NSDate, AnswersNothingForNil) {
    NSDate const none = nil;
    EXPECT_EQ(0.0, none.timeIntervalSinceReferenceDate());
    EXPECT_EQ(0.0, none.timeIntervalSince1970());
    EXPECT_EQ(0.0, none.timeIntervalSinceNow());
    EXPECT_EQ(NSOrderedSame, none.compare_(at(1)));
}

} // namespace mac::test
