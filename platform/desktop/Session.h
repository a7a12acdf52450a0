#pragma once

#include "platform/system/processes/ProcessList.h"
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The session that this process is in, for implementations; any thread.

namespace mac {

// The address of the session's message bus, as the environment tells it; nothing where there is none. None is ever
// started.
std::optional<std::string> sessionBusAddress();

// Whether the process is this user's and was started at the same bus and display: in another session it is somebody
// else's. One whose environment names no bus, or no display, is taken for this session's in that; one that has no
// environment, or may not be looked at, is not.
bool isOfThisSession(std::int32_t pid);

// This session's processes that run the program, as programOf tells it, in the order of their start.
std::vector<ProcessIdentity> sessionProcessesOf(std::string const& program);

} // namespace mac
