#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace mac {

// When the process started, in clock ticks since the system's start, from the line that /proc/PID/stat holds:
// "12 (name) S 1 …". Nothing for one that has ended and is only waited for, and for what is no such line, or not as far
// as behind the start. For implementations; any thread.
std::optional<std::uint64_t> startTimeIn(std::string_view status);

} // namespace mac
