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

// The windows of a process: it has none, at least one shows, or all are minimised.
enum class ProcessWindows { None, Shown, Minimized };

// nullopt without an X11 display whose window manager lists the windows.
std::optional<ProcessWindows> windowsOfProcess(std::int32_t pid);
// Asks the window manager to minimise all windows of the process. False if it has none, or no window manager runs.
bool minimizeWindows(std::int32_t pid);
// Asks the window manager to restore the process's minimised windows, the topmost one last. False if it has none, or no
// window manager runs.
bool restoreWindows(std::int32_t pid);

} // namespace mac
