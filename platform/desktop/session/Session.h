#pragma once

#include "platform/system/processes/ProcessList.h"
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The desktop session that this process runs in; for implementations, any thread.

namespace mac {

// The address of the session's message bus, from the environment; nullopt if it names none. Never starts a bus.
std::optional<std::string> sessionBusAddress();

// Whether the environment names a display, on X11 or Wayland, to show a window on.
bool hasDisplay();

// The names of the desktop (XDG_CURRENT_DESKTOP), by precedence: {"ubuntu", "GNOME"}.
std::vector<std::string> currentDesktops();

// Whether the process belongs to this user and was started on the same bus and display. A process whose environment
// names no bus, or no display, passes that part of the test; one that has no environment, or whose environment may not
// be read, fails it.
bool isOfThisSession(std::int32_t pid);

// This session's processes that run the program, as programOf answers it, in the order of their start.
std::vector<ProcessIdentity> sessionProcessesOf(std::string const& program);

} // namespace mac
