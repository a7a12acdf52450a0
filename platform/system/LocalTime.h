#pragma once

#include <chrono>
#include <string>

namespace mac {

// The moment in local time, truncated to milliseconds: "2026-11-21 10:00:00.123". Any thread.
std::string localTimeStamp(std::chrono::system_clock::time_point moment);

} // namespace mac
