#include "platform/foundation/dates/UTCDateTime.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace mac::test {
namespace {

TEST(UTCDateTime, CountsFrom1904) {
    UTCDateTime date;
    ASSERT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(0, &date), noErr);
    EXPECT_EQ(date, (UTCDateTime{0, 3'061'152'000, 0}));
    ASSERT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(-3'061'152'000.0, &date), noErr);
    EXPECT_EQ(date, UTCDateTime{});
    ASSERT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(1'233'815'296.5, &date), noErr);
    EXPECT_EQ(date, (UTCDateTime{1, 0, 0x8000}));
}

TEST(UTCDateTime, ComesBackAsItWas) {
    for (double const time : {0.0, 0.5, -0.25, 1e8 + 1.0 / 65536, -1e9, 252'423'993'599.0}) {
        UTCDateTime date;
        double back = -1;
        ASSERT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(time, &date), noErr);
        ASSERT_EQ(UCConvertUTCDateTimeToCFAbsoluteTime(&date, &back), noErr);
        EXPECT_EQ(back, time);
    }
}

TEST(UTCDateTime, RoundsUpToTheNextSecond) {
    UTCDateTime date;
    ASSERT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(0.9999999, &date), noErr);
    EXPECT_EQ(date, (UTCDateTime{0, 3'061'152'001, 0}));
}

TEST(UTCDateTime, HoldsNoMomentBefore1904OrBeyondItsBits) {
    UTCDateTime date{1, 2, 3};
    for (double const time : {-3'061'152'001.0, 281'471'915'558'656.0, std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(), std::nan("")})
        EXPECT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(time, &date), paramErr) << time;
    EXPECT_EQ(date, (UTCDateTime{1, 2, 3}));
    double time = 0;
    EXPECT_EQ(UCConvertCFAbsoluteTimeToUTCDateTime(0, nullptr), paramErr);
    EXPECT_EQ(UCConvertUTCDateTimeToCFAbsoluteTime(nullptr, &time), paramErr);
    EXPECT_EQ(UCConvertUTCDateTimeToCFAbsoluteTime(&date, nullptr), paramErr);
}

} // namespace
} // namespace mac::test
