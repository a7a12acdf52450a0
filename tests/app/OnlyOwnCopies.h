#pragma once

#include "platform/system/processes/ProcessList.h"
#include "tests/support/OwnProcesses.h"
#include <algorithm>

namespace framekeeper::test {

// For tests that expect an inventory without running copies other than their own. They are skipped only where the
// system refuses a process namespace and a copy of the companion happens to run.
class OnlyOwnCopies : public testing::Test {
protected:
    void SetUp() override {
        if (mac::test::hasOwnProcesses()) return;
        bool const doesCopyRun = std::ranges::any_of(mac::runningProcesses(), [](mac::RunningProcess const& process) {
            return mac::programOf(process).find("/Mirror Frame.app/") != std::string::npos;
        });
        if (doesCopyRun) GTEST_SKIP() << "a copy of the companion runs, and this system refuses a process namespace";
    }
};

} // namespace framekeeper::test
