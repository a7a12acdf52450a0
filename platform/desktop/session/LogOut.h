#pragma once

#include "platform/desktop/DesktopProblem.h"
#include <chrono>
#include <optional>
#include <string>

namespace mac {

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
