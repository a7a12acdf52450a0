#pragma once

#include "platform/foundation/NSString.h"
#include "platform/processes/Processes.h"
#include "tests/support/ChildProcess.h"
#include <gtest/gtest.h>
#include <string>

namespace mac::test {

// A copy of the companion that runs, within reach of events, and ends with the object. Its kind is a folder of
// tests/companion: "willing", "refusing", "slow", "deaf" or "other".
class RunningCompanion {
public:
    explicit RunningCompanion(std::string const& kind)
        : m_bundle(std::string(COMPANIONS) + "/" + kind + "/Mirror Frame.app"),
          m_process({m_bundle + "/Contents/Linux/Mirror Frame"}) {
        EXPECT_EQ(m_process.readLine(), "ready");
    }

    NSString bundle() const { return NSString::stringWithFileSystemRepresentation_(m_bundle); }
    std::int32_t pid() const { return m_process.pid(); }
    ProcessSerialNumber psn() const {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(pid(), &psn), noErr);
        return psn;
    }
    bool isRunning() const {
        ProcessSerialNumber psn;
        return GetProcessForPID(pid(), &psn) == noErr;
    }
    ChildProcess& process() { return m_process; }

private:
    std::string m_bundle;
    ChildProcess m_process;
};

} // namespace mac::test
