#include "platform/desktop/session/FrontProcess.h"
#include "platform/desktop/session/X11Display.h"
#include <algorithm>
#include <array>
#include <unistd.h>

namespace mac {

namespace {

std::string hostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : "";
}

// The ID of the process that the window names; nullopt if it names none, or one of another computer.
std::optional<std::int32_t> processOf(X11Display const& display, std::uint32_t window) {
    std::vector<std::uint32_t> const pid = display.numbers(window, "_NET_WM_PID");
    if (pid.empty() || pid[0] == 0 || pid[0] > INT32_MAX) return std::nullopt;
    std::string const computer = display.text(window, "WM_CLIENT_MACHINE");
    if (!computer.empty() && computer != hostName()) return std::nullopt;
    return static_cast<std::int32_t>(pid[0]);
}

// The windows from the topmost to the lowest.
std::vector<std::uint32_t> windowsOf(X11Display const& display) {
    std::vector<std::uint32_t> windows = display.numbers(display.rootWindow(), "_NET_CLIENT_LIST_STACKING");
    if (windows.empty()) windows = display.numbers(display.rootWindow(), "_NET_CLIENT_LIST");
    std::ranges::reverse(windows);
    return windows;
}

// Sent as a pager does, on the user's behalf: a window manager may only mark the window for a program's own request.
bool activate(X11Display const& display, std::uint32_t window) {
    constexpr std::uint32_t fromPager = 2;
    constexpr std::uint32_t now = 0;
    return display.tellWindowManager(window, "_NET_ACTIVE_WINDOW", {fromPager, now, 0, 0, 0});
}

// The state of WM_STATE that stands for a minimised window, also in requests for it.
constexpr std::uint32_t IconicState = 3;

bool isMinimized(X11Display const& display, std::uint32_t window) {
    std::vector<std::uint32_t> const state = display.numbers(window, "WM_STATE");
    return !state.empty() && state[0] == IconicState;
}

// The windows of the process from the topmost to the lowest.
std::vector<std::uint32_t> windowsOf(X11Display const& display, std::int32_t pid) {
    std::vector<std::uint32_t> windows = windowsOf(display);
    std::erase_if(windows, [&](std::uint32_t window) { return processOf(display, window) != pid; });
    return windows;
}

} // namespace

std::optional<std::int32_t> frontProcessID() {
    std::unique_ptr<X11Display> const display = X11Display::open();
    if (!display) return std::nullopt;
    std::vector<std::uint32_t> const window = display->numbers(display->rootWindow(), "_NET_ACTIVE_WINDOW");
    if (window.empty() || window[0] == 0) return std::nullopt;
    return processOf(*display, window[0]);
}

bool bringToFront(std::int32_t pid) {
    std::unique_ptr<X11Display> const display = X11Display::open();
    if (!display) return false;
    std::vector<std::uint32_t> const windows = windowsOf(*display, pid);
    return !windows.empty() && activate(*display, windows.front());
}

std::optional<ProcessWindows> windowsOfProcess(std::int32_t pid) {
    std::unique_ptr<X11Display> const display = X11Display::open();
    bool const isManaged = display && !display->numbers(display->rootWindow(), "_NET_SUPPORTING_WM_CHECK").empty();
    if (!isManaged) return std::nullopt;
    std::vector<std::uint32_t> const windows = windowsOf(*display, pid);
    if (windows.empty()) return ProcessWindows::None;
    bool const areMinimized =
        std::ranges::all_of(windows, [&](std::uint32_t window) { return isMinimized(*display, window); });
    return areMinimized ? ProcessWindows::Minimized : ProcessWindows::Shown;
}

bool minimizeWindows(std::int32_t pid) {
    std::unique_ptr<X11Display> const display = X11Display::open();
    if (!display) return false;
    bool isAsked = false;
    for (std::uint32_t const window : windowsOf(*display, pid))
        isAsked = display->tellWindowManager(window, "WM_CHANGE_STATE", {IconicState}) || isAsked;
    return isAsked;
}

bool restoreWindows(std::int32_t pid) {
    std::unique_ptr<X11Display> const display = X11Display::open();
    if (!display) return false;
    std::vector<std::uint32_t> windows = windowsOf(*display, pid);
    std::ranges::reverse(windows);
    bool isAsked = false;
    for (std::uint32_t const window : windows)
        if (isMinimized(*display, window)) isAsked = activate(*display, window) || isAsked;
    return isAsked;
}

} // namespace mac
