#include "platform/desktop/session/Session.h"
#include "tests/support/Commands.h"
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace mac::test {

// Right after its start a program seems to have no environment, and so to belong to no session.
TEST(Session, KnowsProgramsFromTheirStart) {
    constexpr int programs = 50;
    int ofThisSession = 0;
    for (int number = 0; number < programs; ++number) {
        int const program = spawn({"sleep", "60"}, -1, -1);
        ofThisSession += isOfThisSession(program) ? 1 : 0;
        ::kill(program, SIGKILL);
        EXPECT_EQ(::waitpid(program, nullptr, 0), program);
    }
    EXPECT_EQ(ofThisSession, programs);
}

} // namespace mac::test
