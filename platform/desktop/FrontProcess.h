#pragma once

#include <cstdint>
#include <optional>

// Whose window is in front, for implementations. Any thread; each call has a connection of its own to the display.

namespace mac {

// Nothing where the display does not tell.
std::optional<std::int32_t> frontProcessID();

// Asks the window manager; false when the process has no windows, or nobody can be asked.
bool bringToFront(std::int32_t pid);

} // namespace mac
