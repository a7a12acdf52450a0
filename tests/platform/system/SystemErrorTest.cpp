#include "platform/system/Result.h"
#include <cerrno>
#include <gtest/gtest.h>

using namespace mac;

namespace {

TEST(SystemError, TellsOperationItemAndReason) {
    errno = EACCES;
    SystemError const error = lastSystemError("rename", "notes.txt");
    EXPECT_TRUE(error.is(EACCES));
    EXPECT_EQ(error.text(), "rename of \"notes.txt\": " + textOfSystemError(EACCES));
}

TEST(SystemError, LeavesOutAnUnknownItem) {
    EXPECT_EQ((SystemError{.code = ENOSPC, .operation = "write"}.text()), "write: " + textOfSystemError(ENOSPC));
}

TEST(Result, HoldsAValueOrAProblem) {
    Result<int> const value = 3;
    EXPECT_TRUE(value.hasValue());
    EXPECT_EQ(value.value(), 3);
    Result<int> const problem = SystemError{.code = ENOENT, .operation = "open"};
    EXPECT_FALSE(problem.hasValue());
    EXPECT_TRUE(problem.problem().is(ENOENT));
}

TEST(Result, WithoutValueIsDoneUnlessThereIsAProblem) {
    EXPECT_TRUE(Result<void>().isDone());
    EXPECT_FALSE(Result<void>(SystemError{.code = EIO}).isDone());
}

} // namespace
