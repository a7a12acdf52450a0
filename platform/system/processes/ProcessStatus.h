#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace mac {

// The start of a process in clock ticks since the system's start, from the line of /proc/PID/stat: "12 (name) S 1 …".
// nullopt for a zombie or dead process, and for a line of another form or one that is cut off before the end of that
// field. For implementations; any thread.
std::optional<std::uint64_t> startTimeIn(std::string_view status);

} // namespace mac
