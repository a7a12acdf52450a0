#include "tests/platform/desktop/VirtualSession.h"
#include "platform/foundation/running/EventLoop.h"
#include "tests/support/Commands.h"
#include <csignal>
#include <stdexcept>

namespace mac::test {

namespace {

constexpr char AccessibilityBus[] = "/usr/libexec/at-spi-bus-launcher";

// The program fails if a window goes while it reads them.
std::string windowTree() {
    std::string tree;
    bool const isRead = waitUntil([&] {
        try {
            tree = outputOf({"xwininfo", "-root", "-tree"});
        } catch (std::runtime_error const&) {
            return false;
        }
        return true;
    });
    EXPECT_TRUE(isRead) << "which windows there are is not known";
    return tree;
}

// Role and name of each element behind a line feed; "whole" at the end if nothing changed while they were read.
std::string accessibleElements() { return "\n" + outputOf({LIST_ACCESSIBLE}); }

} // namespace

std::optional<std::string> VirtualDisplay::obstacle() {
    if (::access("/usr/bin/Xvfb", X_OK) == 0) return std::nullopt;
    return "Xvfb is not installed";
}

LoopWithoutDisplay::LoopWithoutDisplay() {
    EnvironmentVariable const display("DISPLAY", std::nullopt);
    EnvironmentVariable const wayland("WAYLAND_DISPLAY", std::nullopt);
    requireEventLoop();
}

std::optional<std::string> VirtualSession::obstacle() {
    if (std::optional<std::string> const missing = VirtualDisplay::obstacle()) return missing;
    for (char const* const program : {"/usr/bin/xwininfo", "/usr/bin/dbus-daemon", AccessibilityBus}) {
        if (::access(program, X_OK) != 0) return std::string(program) + " is not installed";
    }
    return std::nullopt;
}

VirtualSession::VirtualSession(std::string const& runtimeFolder)
    : m_runtime("XDG_RUNTIME_DIR", runtimeFolder), m_address("DBUS_SESSION_BUS_ADDRESS", m_bus.address()),
      m_accessibility(endingWithThisProcess({AccessibilityBus, "--launch-immediately"}, "TERM")) {
    // Whoever starts before that bus is there is never read.
    EXPECT_TRUE(waitUntil([] { return outputOf({LIST_ACCESSIBLE, "--ready"}) == "yes\n"; }));
}

VirtualSession::~VirtualSession() {
    m_accessibility.sendSignal(SIGTERM);
    m_accessibility.wait();
}

bool VirtualSession::showsWindow(std::string const& title) {
    return waitUntil([&] { return countWindows(title) > 0; });
}

std::size_t VirtualSession::countWindows(std::string const& title) {
    std::string const tree = windowTree();
    // The names of the window's class are quoted, too, behind the title.
    std::string const shown = "\"" + title + "\": (";
    std::size_t count = 0;
    for (std::size_t place = tree.find(shown); place != std::string::npos; place = tree.find(shown, place + 1))
        ++count;
    return count;
}

bool VirtualSession::showsElement(std::string const& beginning) {
    return waitUntil([&] { return accessibleElements().find("\n" + beginning) != std::string::npos; });
}

bool VirtualSession::hidesElement(std::string const& beginning) {
    return waitUntil([&] {
        std::string const elements = accessibleElements();
        return elements.ends_with("\nwhole\n") && elements.find("\n" + beginning) == std::string::npos;
    });
}

} // namespace mac::test
