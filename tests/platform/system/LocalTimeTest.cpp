#include "platform/system/LocalTime.h"
#include "tests/support/Environment.h"
#include <ctime>
#include <gtest/gtest.h>

namespace mac::test {

namespace {

class LocalTime : public testing::Test {
protected:
    LocalTime() { ::tzset(); }
    ~LocalTime() override {
        m_zone.reset();
        ::tzset();
    }

    std::optional<EnvironmentVariable> m_zone{std::in_place, "TZ", "ABC-2"};
};

std::chrono::system_clock::time_point momentAt(std::chrono::microseconds sinceEpoch) {
    return std::chrono::system_clock::time_point(sinceEpoch);
}

} // namespace

TEST_F(LocalTime, IsWrittenWithTwoDigitsAndThreeOfMilliseconds) {
    EXPECT_EQ(localTimeStamp(momentAt(std::chrono::microseconds(1205755509'042'999))), "2008-03-17 14:05:09.042");
    EXPECT_EQ(localTimeStamp(momentAt(std::chrono::microseconds(0))), "1970-01-01 02:00:00.000");
}

TEST_F(LocalTime, IsCutToTheMillisecondAlsoBeforeItsCountBegins) {
    EXPECT_EQ(localTimeStamp(momentAt(std::chrono::microseconds(-1))), "1970-01-01 01:59:59.999");
    EXPECT_EQ(localTimeStamp(momentAt(std::chrono::microseconds(999'999))), "1970-01-01 02:00:00.999");
}

} // namespace mac::test
