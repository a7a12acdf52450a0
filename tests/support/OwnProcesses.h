#pragma once

#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>

namespace mac::test {

// tests/support/with-own-processes says in the environment what came of it: "yes", or "no" where the system refuses.
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
