#include "platform/desktop/session/FrontProcess.h"
#include "platform/processes/Processes.h"
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
namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

// A display of the test's own, on which the test plays the window manager.
class FrontProcess : public testing::Test {
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
        Reply<xcb_intern_atom_reply_t> const reply(xcb_intern_atom_reply(m_connection, cookie, nullptr), &std::free);
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
    Reply<xcb_client_message_event_t> message() const {
        Reply<xcb_generic_event_t> event(xcb_poll_for_event(m_connection), &std::free);
        if (!event || (event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) return {nullptr, &std::free};
        return {reinterpret_cast<xcb_client_message_event_t*>(event.release()), &std::free};
    }

    static ProcessSerialNumber numberOf(std::int32_t pid) {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(pid, &psn), noErr);
        return psn;
    }

    ProcessSerialNumber m_front;
    std::unique_ptr<ChildProcess> m_server;
    std::unique_ptr<EnvironmentVariable> m_display;
    xcb_connection_t* m_connection{nullptr};
    xcb_window_t m_root{0};
};

TEST_F(FrontProcess, IsThatOfTheActiveWindow) {
    ChildProcess const child({"/bin/cat"});
    activate(makeWindow(child.pid()));
    ASSERT_EQ(GetFrontProcess(&m_front), noErr);
    EXPECT_EQ(m_front, numberOf(child.pid()));
    activate(makeWindow(::getpid()));
    ASSERT_EQ(GetFrontProcess(&m_front), noErr);
    EXPECT_EQ(m_front, numberOf(::getpid()));
}

TEST_F(FrontProcess, IsUnknownIfNobodyAnswers) {
    EXPECT_EQ(GetFrontProcess(&m_front), procNotFound) << "there is no window manager";
    activate(XCB_WINDOW_NONE);
    EXPECT_EQ(GetFrontProcess(&m_front), procNotFound) << "no window is active";
    activate(0x7FFFFFF);
    EXPECT_EQ(GetFrontProcess(&m_front), procNotFound) << "the window has gone";
    xcb_window_t const window = makeWindow(::getpid());
    activate(window);
    setText(window, "WM_CLIENT_MACHINE", "elsewhere.example");
    EXPECT_EQ(GetFrontProcess(&m_front), procNotFound) << "the ID is another computer's";
    setText(window, "_NET_WM_PID", "text");
    EXPECT_EQ(GetFrontProcess(&m_front), procNotFound);
}

TEST_F(FrontProcess, IsUnknownWithoutADisplay) {
    EnvironmentVariable const none("DISPLAY", ":65000");
    EXPECT_EQ(GetFrontProcess(&m_front), procNotFound);
    ProcessSerialNumber const current{0, kCurrentProcess};
    EXPECT_EQ(SetFrontProcess(&current), appIsDaemon);
}

TEST_F(FrontProcess, IsAskedForByItsTopmostWindow) {
    ChildProcess const child({"/bin/cat"});
    xcb_window_t const lower = makeWindow(child.pid());
    xcb_window_t const upper = makeWindow(child.pid());
    xcb_window_t const other = makeWindow(::getpid());
    list("_NET_CLIENT_LIST", {upper, lower, other});
    list("_NET_CLIENT_LIST_STACKING", {lower, upper, other});
    atom("_NET_ACTIVE_WINDOW");
    manageWindows();
    ProcessSerialNumber const psn = numberOf(child.pid());
    EXPECT_EQ(SetFrontProcess(&psn), noErr);
    Reply<xcb_client_message_event_t> const asked = message();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->type, atom("_NET_ACTIVE_WINDOW"));
    EXPECT_EQ(asked->window, upper);
    EXPECT_EQ(asked->data.data32[0], 2U) << "as a pager asks";
}

TEST_F(FrontProcess, IsAskedForWhereTheOrderOfWindowsIsUnknown) {
    ChildProcess const child({"/bin/cat"});
    xcb_window_t const window = makeWindow(child.pid());
    list("_NET_CLIENT_LIST", {window});
    atom("_NET_ACTIVE_WINDOW");
    manageWindows();
    ProcessSerialNumber const psn = numberOf(child.pid());
    EXPECT_EQ(SetFrontProcess(&psn), noErr);
    ASSERT_TRUE(message());
}

TEST_F(FrontProcess, CannotBeOneWithoutWindows) {
    ChildProcess const child({"/bin/cat"});
    list("_NET_CLIENT_LIST_STACKING", {makeWindow(::getpid())});
    ProcessSerialNumber const psn = numberOf(child.pid());
    EXPECT_EQ(SetFrontProcess(&psn), appIsDaemon);
    ProcessSerialNumber const none{0, kNoProcess};
    EXPECT_EQ(SetFrontProcess(&none), procNotFound);
}

TEST_F(FrontProcess, TellsWhetherWindowsShow) {
    constexpr std::uint32_t normalState = 1;
    constexpr std::uint32_t iconicState = 3;
    ChildProcess const child({"/bin/cat"});
    xcb_window_t const first = makeWindow(child.pid());
    xcb_window_t const second = makeWindow(child.pid());
    list("_NET_CLIENT_LIST", {first, second});
    EXPECT_EQ(windowsOfProcess(child.pid()), std::nullopt) << "nobody manages the windows";
    set(m_root, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {first});
    EXPECT_EQ(windowsOfProcess(::getpid()), ProcessWindows::None);
    EXPECT_EQ(windowsOfProcess(child.pid()), ProcessWindows::Shown);
    set(first, "WM_STATE", atom("WM_STATE"), {iconicState, 0});
    set(second, "WM_STATE", atom("WM_STATE"), {normalState, 0});
    EXPECT_EQ(windowsOfProcess(child.pid()), ProcessWindows::Shown);
    set(second, "WM_STATE", atom("WM_STATE"), {iconicState, 0});
    EXPECT_EQ(windowsOfProcess(child.pid()), ProcessWindows::Minimized);
}

TEST_F(FrontProcess, IsMinimizedAndRestoredByTheWindowManager) {
    constexpr std::uint32_t iconicState = 3;
    ChildProcess const child({"/bin/cat"});
    xcb_window_t const window = makeWindow(child.pid());
    list("_NET_CLIENT_LIST", {window});
    atom("WM_CHANGE_STATE");
    atom("_NET_ACTIVE_WINDOW");
    manageWindows();
    EXPECT_FALSE(minimizeWindows(::getpid()));
    EXPECT_TRUE(minimizeWindows(child.pid()));
    Reply<xcb_client_message_event_t> const minimized = message();
    ASSERT_TRUE(minimized);
    EXPECT_EQ(minimized->type, atom("WM_CHANGE_STATE"));
    EXPECT_EQ(minimized->window, window);
    EXPECT_EQ(minimized->data.data32[0], iconicState);
    EXPECT_FALSE(restoreWindows(child.pid())) << "it is not minimised";
    set(window, "WM_STATE", atom("WM_STATE"), {iconicState, 0});
    EXPECT_TRUE(restoreWindows(child.pid()));
    Reply<xcb_client_message_event_t> const restored = message();
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->type, atom("_NET_ACTIVE_WINDOW"));
    EXPECT_EQ(restored->window, window);
}

TEST(FrontProcessOfNull, IsAnError) {
    EXPECT_EQ(GetFrontProcess(nullptr), paramErr);
    EXPECT_EQ(SetFrontProcess(nullptr), paramErr);
}

} // namespace
} // namespace mac::test
