#pragma once

#include "platform/foundation/text/NSString.h"
#include "platform/processes/Processes.h"
#include "tests/support/ChildProcess.h"
#include <string>

namespace mac::test {

// A copy of the companion that runs, within reach of events, and ends with the object. Its kind is a folder of
// tests/companion: "willing", "refusing", "crashing", "slow", "lingering", "deaf"
// or "other".
class RunningCompanion {
public:
    explicit RunningCompanion(std::string const& kind);

    NSString bundle() const { return NSString::stringWithFileSystemRepresentation_(m_bundle); }
    std::int32_t pid() const { return m_process.pid(); }
    ProcessSerialNumber psn() const;
    bool isRunning() const;
    ChildProcess& process() { return m_process; }

private:
    std::string m_bundle;
    ChildProcess m_process;
};

} // namespace mac::test
