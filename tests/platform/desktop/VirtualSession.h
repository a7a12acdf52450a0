#pragma once

#include "tests/platform/desktop/Desktop.h"
#include <optional>
#include <string>

namespace mac::test {

// A virtual display, in the environment as long as the object lives. A program that connects its toolkit to it must end
// first.
class VirtualDisplay {
public:
    // Which program it lacks on this computer; nullopt if it can be made.
    static std::optional<std::string> obstacle();

    void sendSignal(int signal) const { m_server.sendSignal(signal); }

private:
    // Without -noreset the server starts anew when its last client leaves, and refuses whoever connects meanwhile: a
    // program that only asked whether there is a display would shut out its own windows.
    ChildProcess m_server{endingWithThisProcess(
        {"Xvfb", "-displayfd", "1", "-screen", "0", "1280x800x24", "-noreset", "-nolisten", "tcp"})};
    EnvironmentVariable m_display{"DISPLAY", ":" + m_server.readLine()};
    // An empty name counts as a Wayland display with the library that presses keys.
    EnvironmentVariable m_wayland{"WAYLAND_DISPLAY", std::nullopt};
};

// The program's event loop, made while there is no display that it could be connected to.
class LoopWithoutDisplay {
public:
    LoopWithoutDisplay();
};

// A virtual display and a bus, in the environment as long as the object lives; what is on the display can be read as
// assistive technology does. Texts are English.
class VirtualSession {
public:
    // Which program it lacks on this computer; nullopt if it can be made.
    static std::optional<std::string> obstacle();

    // The folder becomes XDG_RUNTIME_DIR.
    explicit VirtualSession(std::string const& runtimeFolder);
    // Ends the accessibility bus, and with it what it started.
    ~VirtualSession();
    VirtualSession(VirtualSession const&) = delete;
    VirtualSession& operator=(VirtualSession const&) = delete;

    // To a neighbour of the programs in the session, such as SIGSTOP.
    void sendSignalToDisplay(int signal) const { m_display.sendSignal(signal); }
    void sendSignalToBus(int signal) const { m_bus.sendSignal(signal); }

    // Waits for a window of that title; false after a minute.
    static bool showsWindow(std::string const& title);
    // How many windows have that title, shown or not.
    static std::size_t countWindows(std::string const& title);
    // Waits for an element whose role and name begin so ("status bar \"letter.txt\""); false after a minute.
    static bool showsElement(std::string const& beginning);
    // Waits until all elements could be read and none is such; false after a minute.
    static bool hidesElement(std::string const& beginning);

private:
    EnvironmentVariable m_locale{"LC_ALL", "C.UTF-8"};
    EnvironmentVariable m_language{"LANGUAGE", ""};
    EnvironmentVariable m_runtime;
    // The tests outlive the display.
    LoopWithoutDisplay m_loop{};
    VirtualDisplay m_display{};
    PrivateBus m_bus{};
    EnvironmentVariable m_address;
    ChildProcess m_accessibility;
};

} // namespace mac::test
