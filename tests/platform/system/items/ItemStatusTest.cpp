#include "platform/system/items/ItemStatus.h"
#include "platform/system/OpenItems.h"
#include "platform/system/items/ItemDates.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace mac::test {

namespace {

// In the year 2286, beyond what 64 bits of nanoseconds since 1970 hold.
constexpr timespec FarDate{.tv_sec = 10'000'000'000, .tv_nsec = 5};

std::uint64_t markAt(std::string const& path) {
    FileDescriptor const item(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return markOf(statusOf(item).value());
}

bool giveDate(std::string const& path, timespec date) {
    FileDescriptor const item(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return setDates(item, {.modified = date}).isDone();
}

} // namespace

TEST(ItemStatus, HasAMarkThatANewNameDoesNotChange) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "x");
    ASSERT_TRUE(giveDate(file, {.tv_sec = 1'000, .tv_nsec = 0}));
    std::uint64_t const mark = markAt(file);
    ASSERT_EQ(std::rename(file.c_str(), folder.path("other").c_str()), 0);
    EXPECT_EQ(markAt(folder.path("other")), mark);
    ASSERT_TRUE(giveDate(folder.path("other"), {.tv_sec = 1'001, .tv_nsec = 0}));
    EXPECT_NE(markAt(folder.path("other")), mark);
}

TEST(ItemStatus, HasAMarkOfItsOwnForADateBeyond64Bits) {
    TemporaryFolder const folder;
    std::string const file = folder.makeFile("file", "x");
    ASSERT_TRUE(giveDate(file, FarDate));
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    if (status.st_mtim.tv_sec != FarDate.tv_sec) GTEST_SKIP() << "the file system keeps no dates after 2262";
    std::uint64_t const mark = markAt(file);
    EXPECT_EQ(markAt(file), mark);
    ASSERT_TRUE(giveDate(file, {.tv_sec = 1'000, .tv_nsec = 0}));
    EXPECT_NE(markAt(file), mark);
}

TEST(ItemStatus, SettlesOnceNoLaterChangeGetsItsTime) {
    constexpr std::int64_t second = 1'000'000'000;
    constexpr std::int64_t now = 1'700'000'000 * second + 123'456'789;
    constexpr FileClocks clocks{.exact = now + 3'000'000, .ofFiles = now, .tick = 4'000'000};
    EXPECT_EQ(timeUntilSettled(now, clocks), 4'000'000);
    EXPECT_EQ(timeUntilSettled(now + 3'000'000, clocks), 7'000'000);
    EXPECT_EQ(timeUntilSettled(now - 1, clocks), 4'000'000) << "the clock does not advance before its next tick";
    EXPECT_EQ(timeUntilSettled(now - 3'999'999, clocks), 4'000'000);
    EXPECT_EQ(timeUntilSettled(now - 4'000'000, clocks), 0);
    EXPECT_EQ(timeUntilSettled(now + 3'000'001, clocks), 0) << "a time in the future";
    EXPECT_EQ(timeUntilSettled(now - 3'456'789, clocks), 6'543'211) << "a time in hundredths of a second";
    EXPECT_EQ(timeUntilSettled(now - 123'456'789, clocks), 2 * second - 123'456'789) << "a time in seconds";
}

// A damaged file system, or a server, may tell any time.
TEST(ItemStatus, IsSettledWithATimeFarAway) {
    constexpr std::int64_t now = 1'700'000'000'123'456'789;
    constexpr FileClocks clocks{.exact = now, .ofFiles = now, .tick = 4'000'000};
    EXPECT_EQ(timeUntilSettled(std::numeric_limits<std::int64_t>::min(), clocks), 0);
    EXPECT_EQ(timeUntilSettled(std::numeric_limits<std::int64_t>::min() + now, clocks), 0);
    EXPECT_EQ(timeUntilSettled(-1, clocks), 0);
    EXPECT_EQ(timeUntilSettled(0, clocks), 0);
    EXPECT_EQ(timeUntilSettled(std::numeric_limits<std::int64_t>::max(), clocks), 0);
}

TEST(ItemDates, BeyondThoseIn64BitsAreTheFirstOrTheLast) {
    EXPECT_EQ(nanosecondsOfDate(1, 2), 1'000'000'002);
    EXPECT_EQ(nanosecondsOfDate(-1, 999'999'999), -1);
    EXPECT_EQ(nanosecondsOfDate(9'223'372'036, 854'775'807), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(nanosecondsOfDate(9'223'372'036, 854'775'808), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(nanosecondsOfDate(FarDate.tv_sec, FarDate.tv_nsec), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(nanosecondsOfDate(-FarDate.tv_sec, 0), std::numeric_limits<std::int64_t>::min());
}

} // namespace mac::test
