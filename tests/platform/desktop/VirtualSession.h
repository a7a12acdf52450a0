#pragma once

#include "tests/platform/desktop/Desktop.h"
#include <optional>
#include <string>

namespace mac::test {

// A display that nobody sees and a bus, in the environment for as long as the object lives; what is on the display can
// be read as assistive technology does. Texts are English.
class VirtualSession {
public:
    // Why there can be none here; nothing where there can.
    static std::optional<std::string> obstacle();

    // The folder for what the session leaves while it runs.
    explicit VirtualSession(std::string const& runtimeFolder);
    // Asked, the bus of assistive technology ends with all that is on it.
    ~VirtualSession();
    VirtualSession(VirtualSession const&) = delete;
    VirtualSession& operator=(VirtualSession const&) = delete;

    // Whether a window of that title comes.
    static bool showsWindow(std::string const& title);
    // Whether an element comes whose role and name begin so ("status bar \"letter.txt\"").
    static bool showsElement(std::string const& beginning);

private:
    EnvironmentVariable m_locale{"LC_ALL", "C.UTF-8"};
    EnvironmentVariable m_language{"LANGUAGE", ""};
    EnvironmentVariable m_runtime;
    ChildProcess m_server;
    EnvironmentVariable m_display;
    EnvironmentVariable m_wayland{"WAYLAND_DISPLAY", ""};
    PrivateBus m_bus{};
    EnvironmentVariable m_address;
    ChildProcess m_accessibility;
};

} // namespace mac::test
