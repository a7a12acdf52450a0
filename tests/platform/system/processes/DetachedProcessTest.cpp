#include "platform/system/processes/DetachedProcess.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mac::test {
namespace {

TEST(DetachedProcess, FailsWithTheCodeAndTheProgram) {
    TemporaryFolder const folder;
    Result<std::int32_t> const none = startDetached(folder.path("none"), {"none"});
    ASSERT_FALSE(none.hasValue());
    EXPECT_EQ(none.problem().code, ENOENT);
    EXPECT_STREQ(none.problem().operation, "exec");
    EXPECT_EQ(none.problem().item, folder.path("none"));
    EXPECT_EQ(codeOf(startDetached(folder.makeFile("text", "no program"), {"text"})), EACCES);
}

TEST(DetachedProcess, IsNoChildOfThisOne) {
    Result<std::int32_t> const process = startDetached("/bin/true", {"true"}, "/");
    ASSERT_TRUE(process.hasValue());
    EXPECT_GT(process.value(), 0);
    EXPECT_NE(process.value(), ::getpid());
}

} // namespace
} // namespace mac::test
