#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "tests/platform/desktop/VirtualSession.h"
#include "tests/support/Commands.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <xcb/xcb.h>

// The disclaimer of a real application on a display of its own, used by keyboard and read as assistive technology does.

namespace mac::test {
namespace {

// The bundle of an application with that build number, in the folder.
std::string makeApplication(TemporaryFolder const& folder, std::string const& version) {
    std::string const bundle = folder.makeBundle("Asking.app", informationFile("com.example.asking", version, version));
    std::string const program = folder.makeFolder("Asking.app/Contents/Linux") + "/Asking";
    std::filesystem::copy_file(DISCLAIMER_PROGRAM, program, std::filesystem::copy_options::skip_existing);
    return program;
}

// What the application says until it has ended.
std::vector<std::string> linesOf(ChildProcess& application) {
    std::vector<std::string> lines;
    for (std::string line = application.readLine(); !line.empty(); line = application.readLine())
        lines.push_back(line);
    return lines;
}

using Lines = std::vector<std::string>;

constexpr char DefaultsFile[] = "home/.config/framekeeper/Preferences/com.example.asking.plist";

class DisclaimerProgram : public testing::Test {
protected:
    std::unique_ptr<ChildProcess> start(std::string const& version) const {
        return std::make_unique<ChildProcess>(Lines{makeApplication(m_folder, version)});
    }

    // What the application keeps for its user.
    id defaults() const {
        return NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
            NSData::dataWithContentsOfFile_(NSString::stringWithFileSystemRepresentation_(m_folder.path(DefaultsFile))),
            NSPropertyListImmutable, nullptr, nullptr);
    }

    TemporaryFolder const m_folder{};
    EnvironmentVariable const m_home{"HOME", m_folder.path("home")};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("home/.config")};
    EnvironmentVariable const m_platform{"QT_QPA_PLATFORM", std::nullopt};
    EnvironmentVariable const m_waylandDisplay{"WAYLAND_DISPLAY", std::nullopt};
};

TEST_F(DisclaimerProgram, WithoutADisplayCountsAsDeclined) {
    EnvironmentVariable const display("DISPLAY", std::nullopt);
    ChildProcess application({"/bin/sh", "-c", "exec \"$0\" 2>&1", makeApplication(m_folder, "120")});
    std::string said;
    for (std::string const& line : linesOf(application))
        said += line + "\n";
    EXPECT_EQ(application.wait(), 0);
    EXPECT_NE(said.find("The alert \"Disclaimer\" cannot be shown: there is no display"), std::string::npos) << said;
    EXPECT_NE(said.find("\nshown\nended\n"), std::string::npos) << said;
}

TEST_F(DisclaimerProgram, GoesByTheVersionInTheUserDefaults) {
    EnvironmentVariable const display("DISPLAY", std::nullopt);
    for (std::string const accepted : {"120", "\"120.9 beta\""}) {
        m_folder.makeFile(DefaultsFile, "{\"Disclaimer Shown for Version\" = " + accepted + ";}");
        for (char const* const version : {"", "1", "119", "120", "120.95"})
            EXPECT_EQ(linesOf(*start(version)), (Lines{"not shown", "runs", "ended"})) << version;
        EXPECT_EQ(linesOf(*start("121")), (Lines{"shown", "ended"}));
    }
}

TEST_F(DisclaimerProgram, EndsWhereTheDisplayCannotBeUsed) {
    EnvironmentVariable const display("DISPLAY", ":4217");
    ChildProcess application({makeApplication(m_folder, "120")});
    EXPECT_EQ(linesOf(application), Lines());
    EXPECT_EQ(application.wait(), 1) << "no signal";
}

class DisclaimerInASession : public DisclaimerProgram {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        m_session = std::make_unique<VirtualSession>(m_folder.makeFolder("runtime"));
    }

    static std::string use(ChildProcess const& application, Lines const& words) {
        Lines command{USE_ALERT, std::to_string(application.pid())};
        command.insert(command.end(), words.begin(), words.end());
        return outputOf(command);
    }
    static bool shows(ChildProcess const& application, std::string const& part) {
        bool const isShown = waitUntil([&] { return use(application, {"read"}).find(part) != std::string::npos; });
        EXPECT_TRUE(isShown) << part << " in:\n" << use(application, {"read"});
        return isShown;
    }
    // Starts it and waits for the alert, which gets the keyboard.
    std::unique_ptr<ChildProcess> startAndAsk(std::string const& version) const {
        std::unique_ptr<ChildProcess> application = start(version);
        if (!shows(*application, "button Don't Accept")) return application;
        // One that is being read or built may miss it.
        EXPECT_TRUE(waitUntil([&] {
            use(*application, {"focus"});
            return use(*application, {"read"}).find("has the keyboard") != std::string::npos;
        }));
        return application;
    }
    // Asks the window to close, as a window manager does for its button.
    static void askToClose(std::string const& title) {
        std::string const found = outputOf({"xwininfo", "-name", title});
        auto const window = static_cast<xcb_window_t>(std::stoul(found.substr(found.find("0x")), nullptr, 16));
        xcb_connection_t* const server = xcb_connect(nullptr, nullptr);
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom(server, "WM_PROTOCOLS");
        event.data.data32[0] = atom(server, "WM_DELETE_WINDOW");
        xcb_send_event(server, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<char const*>(&event));
        // Waits until the server has sent it.
        std::free(xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
        xcb_disconnect(server);
    }

    std::unique_ptr<VirtualSession> m_session{};

private:
    static xcb_atom_t atom(xcb_connection_t* server, std::string const& name) {
        xcb_intern_atom_cookie_t const asked =
            xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> const reply(
            xcb_intern_atom_reply(server, asked, nullptr), &std::free);
        return reply ? reply->atom : xcb_atom_t{};
    }

    EnvironmentVariable const m_xcb{"QT_QPA_PLATFORM", "xcb"};
    EnvironmentVariable const m_accessibility{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"};
    EnvironmentVariable const m_checks{"ASAN_OPTIONS", "detect_stack_use_after_return=1"};
};

TEST_F(DisclaimerInASession, IsAcceptedByTabAndSpaceAndNoOtherKey) {
    std::unique_ptr<ChildProcess> const application = startAndAsk("120");
    EXPECT_TRUE(shows(*application,
                      "dialog Disclaimer\ntext Disclaimer\ntext This software is provided on an \"AS IS\" basis. You "
                      "accept all risks which may arise from downloading or installing or using this software. The "
                      "author of this software makes no warranties and is not responsible and shall not be held liable "
                      "for any damage, perceived or real, resulting from downloading or using this software."));
    askToClose("Disclaimer");
    // Space too, before a button has the keyboard.
    for (char const* const key : {"return", "escape", "space"})
        use(*application, {"press", key});
    use(*application, {"press", "tab"});
    EXPECT_TRUE(shows(*application, "button Accept has the keyboard"));
    for (char const* const key : {"return", "escape"})
        use(*application, {"press", key});
    use(*application, {"press", "tab"});
    EXPECT_TRUE(shows(*application, "button Don't Accept has the keyboard"));
    use(*application, {"press", "return"});
    // Round, by the text.
    use(*application, {"press", "tab"});
    use(*application, {"press", "tab"});
    EXPECT_TRUE(shows(*application, "button Accept has the keyboard"));
    use(*application, {"press", "space"});
    EXPECT_EQ(linesOf(*application), (Lines{"shown", "runs", "ended"}));
    EXPECT_EQ(application->wait(), 0);
}

TEST_F(DisclaimerInASession, IsShownAgainForAHigherVersionAlone) {
    std::unique_ptr<ChildProcess> application = startAndAsk("120b");
    use(*application, {"press", "tab"});
    EXPECT_TRUE(shows(*application, "button Accept has the keyboard"));
    use(*application, {"press", "space"});
    EXPECT_EQ(linesOf(*application), (Lines{"shown", "runs", "ended"}));
    EXPECT_TRUE(
        defaults().isEqual_(NSDictionary::dictionaryWithObject_forKey_("120b", "Disclaimer Shown for Version")));
    for (char const* const version : {"120", "119", "120.9"})
        EXPECT_EQ(linesOf(*start(version)), (Lines{"not shown", "runs", "ended"})) << version;
    application = startAndAsk("121");
    EXPECT_TRUE(shows(*application, "button Accept"));
}

TEST_F(DisclaimerInASession, EndsTheApplicationThatIsNotAccepted) {
    for (int time = 0; time < 2; ++time) {
        std::unique_ptr<ChildProcess> const application = startAndAsk("120");
        use(*application, {"press", "tab"});
        use(*application, {"press", "tab"});
        EXPECT_TRUE(shows(*application, "button Don't Accept has the keyboard"));
        use(*application, {"press", "space"});
        EXPECT_EQ(linesOf(*application), (Lines{"shown", "ended"})) << "asked anew each time";
        EXPECT_EQ(application->wait(), 0);
    }
}

} // namespace
} // namespace mac::test
