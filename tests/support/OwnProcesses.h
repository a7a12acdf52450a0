#pragma once

#include <cstdlib>
#include <gtest/gtest.h>

namespace mac::test {

// For tests that look at or quit every process that they find: they run only where these are their own, as
// tests/support/with-own-processes sees to, and are skipped elsewhere.
class OwnProcesses : public testing::Test {
protected:
    void SetUp() override {
        if (!std::getenv("FRAMEKEEPER_OWN_PROCESSES"))
            GTEST_SKIP() << "other processes run here: started without tests/support/with-own-processes, or that is "
                            "not allowed to part them";
    }
};

} // namespace mac::test
