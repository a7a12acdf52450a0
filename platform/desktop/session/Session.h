#pragma once

#include "platform/desktop/DesktopProblem.h"
#include "platform/system/processes/ProcessList.h"
#include <chrono>
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

// Logging out of the desktop's session, after its own question: the user may still cancel. What would end a session
// unasked is never done. For implementations; main thread.

// Why the session cannot be left so, in UTF-8 and for people; nullopt if it can. Looks at the session's bus and runs a
// short command, so that it is worth remembering.
std::optional<std::string> obstacleToLoggingOut();

inline constexpr std::chrono::milliseconds LongestLogOutCall{5'000};

// Has the desktop ask the user, and does not wait for the answer, which is not told either. Refused where there is an
// obstacle, and if the session manager refuses; NoAnswer if it does not answer in time.
DesktopOutcome askToLogOut(std::chrono::milliseconds longest = LongestLogOutCall);

} // namespace mac
