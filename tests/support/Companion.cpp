#include "tests/support/Companion.h"
#include <gtest/gtest.h>

namespace mac::test {

RunningCompanion::RunningCompanion(std::string const& kind)
    : m_bundle(std::string(COMPANIONS) + "/" + kind + "/Mirror Frame.app"),
      m_process({m_bundle + "/Contents/Linux/Mirror Frame"}) {
    EXPECT_EQ(m_process.readLine(), "ready");
}

ProcessSerialNumber RunningCompanion::psn() const {
    ProcessSerialNumber psn;
    EXPECT_EQ(GetProcessForPID(pid(), &psn), noErr);
    return psn;
}

bool RunningCompanion::isRunning() const {
    ProcessSerialNumber psn;
    return GetProcessForPID(pid(), &psn) == noErr;
}

} // namespace mac::test
