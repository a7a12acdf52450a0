#include "tests/app/ProgramInASession.h"
#include <csignal>

namespace framekeeper::test {
namespace {

TEST_F(ProgramInASession, QuitsTheSelectedCopyAndTellsOfOneThatRefuses) {
    std::unique_ptr<ChildProcess> const willing = startCopy("Applications");
    std::unique_ptr<ChildProcess> const refusing = startCopy("Downloads/Old Versions/1.9");
    std::string const first = pathOfCopy("Applications");
    std::string const second = pathOfCopy("Downloads/Old Versions/1.9");
    startProgram();
    ASSERT_TRUE(showsAsRunning(first, "Yes"));
    ASSERT_TRUE(showsAsRunning(second, "Yes"));

    quit(first);
    EXPECT_TRUE(showsAsRunning(first, "No"));
    EXPECT_EQ(willing->wait(), -SIGTERM) << "a script takes no events";

    quit(second);
    EXPECT_NE(logLineWith("Could not quit process."), "") << "it says why";
    EXPECT_TRUE(showsAsRunning(second, "Yes"));
    EXPECT_TRUE(showsAsRunning(first, "No"));
}

} // namespace
} // namespace framekeeper::test
