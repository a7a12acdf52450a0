#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// An X11 display, as far as windows of other programs need it. For implementations.

namespace mac {

// A connection to the display that the environment names. libxcb is loaded on first need, so that a program without a
// display runs without it. One thread at a time.
class X11Display {
public:
    // null without a display or the library, or if the display does not answer within the thread's patience; then also
    // from later calls, at once, until it does.
    static std::unique_ptr<X11Display> open();

    class Connection;
    explicit X11Display(std::unique_ptr<Connection> connection);
    ~X11Display();
    X11Display(X11Display const&) = delete;
    X11Display& operator=(X11Display const&) = delete;

    std::uint32_t rootWindow() const;
    // A property's values: numbers for one of 32 bits, text for one of 8 bits. Empty if the window or the property does
    // not exist, or the property has another width.
    std::vector<std::uint32_t> numbers(std::uint32_t window, char const* property) const;
    std::string text(std::uint32_t window, char const* property) const;
    // Sends the window manager a client message about a window, with up to five values. True if the display took it.
    bool tellWindowManager(std::uint32_t window, char const* message, std::vector<std::uint32_t> const& values) const;
    // Tells all programs that follow the display's startup notification that the start under this id has ended, as what
    // it started does once it is in sight: a launcher's busy sign goes. The window is one of the caller's. True if the
    // display took it. The id comes from other programs, and each of its pieces waits for the display: one of more than
    // 1024 bytes is refused.
    bool endStartup(std::uint32_t window, std::string const& id) const;

private:
    std::unique_ptr<Connection> m_connection;
};

} // namespace mac
