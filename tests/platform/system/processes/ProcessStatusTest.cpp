#include "platform/system/processes/ProcessStatus.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

// The fields between the state and the start.
constexpr std::string_view Between = " 1 12 12 0 -1 4194560 7 0 0 0 1 2 0 0 20 0 1 0";

std::optional<std::uint64_t> startOf(std::string_view before, std::string_view behind) {
    return startTimeIn(std::string(before).append(Between).append(behind));
}

TEST(ProcessStatus, TellsTheStart) {
    EXPECT_EQ(startOf("12 (sleep) S", " 4711 2994176 214\n"), 4711U);
    EXPECT_EQ(startOf("12 (sleep) R", " 18446744073709551615 0\n"), 18446744073709551615U);
}

TEST(ProcessStatus, TakesTheNameForWhatItIs) {
    for (std::string_view const name : {"", " ", ")", "a) S 1", ") Z", "(", "(a) ", "a\nb", "\xFF"})
        EXPECT_EQ(startOf("12 (" + std::string(name) + ") S", " 4711 0\n"), 4711U) << name;
}

TEST(ProcessStatus, TellsNothingOfAnEndedProcess) {
    EXPECT_FALSE(startOf("12 (sleep) Z", " 4711 0\n"));
    EXPECT_FALSE(startOf("12 (sleep) X", " 4711 0\n"));
}

TEST(ProcessStatus, TellsNothingWhereTheLineIsNone) {
    for (std::string_view const line :
         {"", "12", "12 (sleep", "12 (sleep)", "12 (sleep) ", "12 (sleep) S", "12 sleep S 1"})
        EXPECT_FALSE(startTimeIn(line)) << line;
    for (std::string_view const behind : {"", " ", " x", " -1 0", " 18446744073709551616 0", " 47x 0"})
        EXPECT_FALSE(startOf("12 (sleep) S", behind)) << behind;
}

TEST(ProcessStatus, TellsNothingWhereTheLineEndsWithinTheStart) { EXPECT_FALSE(startOf("12 (sleep) S", " 47")); }

} // namespace

} // namespace mac::test
