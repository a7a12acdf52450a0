#include "platform/desktop/session/FrontProcess.h"
#include "platform/processes/Processes.h"
#include "tests/platform/desktop/PlayedWindowManager.h"

namespace mac::test {
namespace {

class FrontProcess : public PlayedWindowManager {
protected:
    static ProcessSerialNumber numberOf(std::int32_t pid) {
        ProcessSerialNumber psn;
        EXPECT_EQ(GetProcessForPID(pid, &psn), noErr);
        return psn;
    }

    ProcessSerialNumber m_front{};
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
    DisplayReply<xcb_client_message_event_t> const asked = message();
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
    DisplayReply<xcb_client_message_event_t> const minimized = message();
    ASSERT_TRUE(minimized);
    EXPECT_EQ(minimized->type, atom("WM_CHANGE_STATE"));
    EXPECT_EQ(minimized->window, window);
    EXPECT_EQ(minimized->data.data32[0], iconicState);
    EXPECT_FALSE(restoreWindows(child.pid())) << "it is not minimised";
    set(window, "WM_STATE", atom("WM_STATE"), {iconicState, 0});
    EXPECT_TRUE(restoreWindows(child.pid()));
    DisplayReply<xcb_client_message_event_t> const restored = message();
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
