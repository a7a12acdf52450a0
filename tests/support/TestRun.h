#pragma once

#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>

// How a test program runs.

namespace mac::test {

// Runs the program's tests as its arguments ask for, with a temporary home folder and in the locale of the environment.
// Returns the program's exit status.
int runTests(int argc, char** argv);

// What tests/support/with-own-processes put into the environment: "yes", or "no" if the system refuses a process
// namespace; nullptr if the program was not made with OWN_PROCESSES.
inline char const* ownProcessesAnswer() { return std::getenv("FRAMEKEEPER_OWN_PROCESSES"); }
inline bool wereOwnProcessesAskedFor() { return ownProcessesAnswer() != nullptr; }
inline bool hasOwnProcesses() { return wereOwnProcessesAskedFor() && ownProcessesAnswer() == std::string_view("yes"); }

// For tests that quit every process that they find, or count them: skipped where the system gives the test program no
// process namespace of its own. The program is made with OWN_PROCESSES.
class OwnProcesses : public testing::Test {
protected:
    void SetUp() override {
        if (!hasOwnProcesses())
            GTEST_SKIP() << "other processes are visible: this system refuses a process namespace (unshare --pid)";
    }
};

} // namespace mac::test
