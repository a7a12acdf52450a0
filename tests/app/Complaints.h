#pragma once

#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include <string>
#include <vector>

namespace framekeeper::test {

// What the program tells its user while this lives: beeps, and lines of the log.
struct Complaints {
    Complaints() = default;
    Complaints(Complaints const&) = delete;
    Complaints& operator=(Complaints const&) = delete;

    int beeps{0};
    std::vector<std::string> lines{};

private:
    mac::LogListener m_logListener{[this](mac::NSString const& line) { lines.push_back(line.UTF8String()); }};
    mac::BeepListener m_beepListener{[this] { ++beeps; }};
};

} // namespace framekeeper::test
