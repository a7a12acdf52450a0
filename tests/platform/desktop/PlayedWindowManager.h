#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace mac::test {

// What the display's library allocates, freed with it.
template <class T>
using DisplayReply = std::unique_ptr<T, decltype(&std::free)>;

// A display of the test's own, on which the test plays the window manager. Skipped if there is no server for it.
class PlayedWindowManager : public testing::Test {
protected:
    void SetUp() override {
        if (::access("/usr/bin/Xvfb", X_OK) != 0) GTEST_SKIP() << "there is no Xvfb";
        m_server = std::make_unique<ChildProcess>(std::vector<std::string>{
            "/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0", "320x200x24", "-noreset", "-nolisten", "tcp"});
        m_display = std::make_unique<EnvironmentVariable>("DISPLAY", ":" + m_server->readLine());
        m_connection = xcb_connect(nullptr, nullptr);
        ASSERT_EQ(xcb_connection_has_error(m_connection), 0);
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    }
    void TearDown() override {
        if (m_connection) xcb_disconnect(m_connection);
    }

    xcb_atom_t atom(std::string_view name) const {
        auto const cookie = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
        DisplayReply<xcb_intern_atom_reply_t> const reply(xcb_intern_atom_reply(m_connection, cookie, nullptr),
                                                          &std::free);
        return reply->atom;
    }
    void set(xcb_window_t window, char const* property, xcb_atom_t type,
             std::vector<std::uint32_t> const& values) const {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
        sync();
    }
    void setText(xcb_window_t window, char const* property, std::string_view text) const {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
        sync();
    }
    void sync() const {
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }
    xcb_window_t makeWindow(std::int32_t pid) const {
        xcb_window_t const window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root, 0, 0, 10, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        set(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(pid)});
        std::array<char, 256> host{};
        ::gethostname(host.data(), host.size() - 1);
        setText(window, "WM_CLIENT_MACHINE", host.data());
        return window;
    }
    void activate(xcb_window_t window) const { set(m_root, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, {window}); }
    void list(char const* property, std::vector<std::uint32_t> const& windows) const {
        set(m_root, property, XCB_ATOM_WINDOW, windows);
    }
    void manageWindows() const {
        std::uint32_t const mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
        sync();
    }
    // The message that came to the window manager; none when it is of another type.
    DisplayReply<xcb_client_message_event_t> message() const {
        // What the server took before it answers has been sent to this client by then.
        sync();
        DisplayReply<xcb_generic_event_t> event(xcb_poll_for_event(m_connection), &std::free);
        if (!event || (event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) return {nullptr, &std::free};
        return {reinterpret_cast<xcb_client_message_event_t*>(event.release()), &std::free};
    }

    std::unique_ptr<ChildProcess> m_server{};
    std::unique_ptr<EnvironmentVariable> m_display{};
    xcb_connection_t* m_connection{nullptr};
    xcb_window_t m_root{0};
};

} // namespace mac::test
