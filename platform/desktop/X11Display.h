#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// What is needed of an X11 display, for implementations.

namespace mac {

// A connection to the display that the environment names. The library for it is loaded on first need, so that a program
// needs none where there is no display. One thread at a time.
class X11Display {
public:
    // Null where there is no display, or no library for it.
    static std::unique_ptr<X11Display> open();

    class Connection;
    explicit X11Display(std::unique_ptr<Connection> connection);
    ~X11Display();
    X11Display(X11Display const&) = delete;
    X11Display& operator=(X11Display const&) = delete;

    std::uint32_t rootWindow() const;
    // The property's values as 32-bit numbers, or its bytes; empty for one that is not there, has another width, or
    // is of a window that has gone.
    std::vector<std::uint32_t> numbers(std::uint32_t window, char const* property) const;
    std::string text(std::uint32_t window, char const* property) const;
    // Sends the window manager a message about a window; whether the display took it.
    bool tellWindowManager(std::uint32_t window, char const* message, std::vector<std::uint32_t> const& values) const;

private:
    std::unique_ptr<Connection> m_connection;
};

} // namespace mac
