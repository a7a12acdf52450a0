#pragma once

#include <cstdint>
#include <optional>

// The process whose window is in front. For implementations; any thread, since each call opens a connection of its own
// to the display.

namespace mac {

// The process ID of the active window; nullopt if no window is active, it names no process of this computer, or there
// is no X11 display.
std::optional<std::int32_t> frontProcessID();

// Asks the window manager to activate the process's topmost window. False if the process has no window, or there is no
// window manager to ask.
bool bringToFront(std::int32_t pid);

} // namespace mac
