#include "platform/desktop/session/X11Display.h"
#include "tests/platform/desktop/VirtualSession.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <xcb/xcb.h>

namespace mac::test {
namespace {

// A program that follows the startup notification of a display of the test's own, as launchers and panels do.
class StartupFollower {
public:
    StartupFollower() {
        EXPECT_EQ(xcb_connection_has_error(m_connection), 0);
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        std::uint32_t const mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
        m_first = atom("_NET_STARTUP_INFO_BEGIN");
        m_next = atom("_NET_STARTUP_INFO");
    }
    ~StartupFollower() { xcb_disconnect(m_connection); }
    StartupFollower(StartupFollower const&) = delete;
    StartupFollower& operator=(StartupFollower const&) = delete;

    std::uint32_t root() const { return m_root; }
    // The next message, up to the zero at its end; the window that it came in the name of.
    std::string message(std::uint32_t* window = nullptr) const {
        std::string text;
        bool isFirst = true;
        for (;;) {
            std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> const event(xcb_wait_for_event(m_connection),
                                                                                   &std::free);
            if (!event) return text + " (the display has gone)";
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) continue;
            auto const& piece = *reinterpret_cast<xcb_client_message_event_t const*>(event.get());
            EXPECT_EQ(piece.type, isFirst ? m_first : m_next);
            EXPECT_EQ(piece.format, 8);
            isFirst = false;
            if (window) *window = piece.window;
            std::string_view const bytes(reinterpret_cast<char const*>(piece.data.data8), sizeof piece.data.data8);
            text += bytes.substr(0, bytes.find('\0'));
            if (bytes.find('\0') != std::string_view::npos) return text;
        }
    }

private:
    xcb_atom_t atom(std::string_view name) const {
        auto const cookie = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
        std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> const reply(
            xcb_intern_atom_reply(m_connection, cookie, nullptr), &std::free);
        return reply->atom;
    }

    xcb_connection_t* m_connection{xcb_connect(nullptr, nullptr)};
    xcb_window_t m_root{XCB_WINDOW_NONE};
    xcb_atom_t m_first{XCB_ATOM_NONE};
    xcb_atom_t m_next{XCB_ATOM_NONE};
};

class X11DisplayMessages : public testing::Test {
protected:
    void SetUp() override {
        if (auto const obstacle = VirtualDisplay::obstacle()) GTEST_SKIP() << *obstacle;
        m_server.emplace();
    }

    std::optional<VirtualDisplay> m_server;
};

TEST_F(X11DisplayMessages, TellThatAStartHasEnded) {
    StartupFollower const follower;
    auto const display = X11Display::open();
    ASSERT_TRUE(display);
    std::uint32_t window = 0;
    EXPECT_TRUE(display->endStartup(follower.root(), "launcher-1_TIME500"));
    EXPECT_EQ(follower.message(&window), R"(remove: ID="launcher-1_TIME500")");
    EXPECT_EQ(window, follower.root());
}

TEST_F(X11DisplayMessages, KeepIdsApartWhateverStandsInThem) {
    StartupFollower const follower;
    auto const display = X11Display::open();
    ASSERT_TRUE(display);
    EXPECT_TRUE(display->endStartup(follower.root(), R"(a "quoted" \ id)"));
    EXPECT_EQ(follower.message(), R"(remove: ID="a \"quoted\" \\ id")");
    // The zero alone in the last piece, and just behind the last byte of one.
    for (std::size_t const length : {7U, 6U, 8U, 27U, 1024U}) {
        std::string const id(length, 'x');
        EXPECT_TRUE(display->endStartup(follower.root(), id));
        EXPECT_EQ(follower.message(), "remove: ID=\"" + id + "\"");
    }
}

TEST_F(X11DisplayMessages, AreNotSentForAnIdThatIsTooLong) {
    StartupFollower const follower;
    auto const display = X11Display::open();
    ASSERT_TRUE(display);
    EXPECT_FALSE(display->endStartup(follower.root(), std::string(1025, 'x')));
    EXPECT_TRUE(display->endStartup(follower.root(), "next"));
    EXPECT_EQ(follower.message(), R"(remove: ID="next")");
}

TEST_F(X11DisplayMessages, AreNotSentWhereNobodyFollows) {
    auto const display = X11Display::open();
    ASSERT_TRUE(display);
    EXPECT_FALSE(display->endStartup(display->rootWindow(), "launcher-1_TIME500"));
}

} // namespace
} // namespace mac::test
