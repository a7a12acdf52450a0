#include "platform/desktop/session/Session.h"
#include "tests/platform/desktop/Desktop.h"
#include <optional>
#include <ostream>
#include <sys/stat.h>

namespace mac::test {

namespace {

// What a desktop's session manager is asked for.
struct LogOutCase {
    char const* label;
    // XDG_CURRENT_DESKTOP
    char const* desktop;
    char const* service;
    char const* path;
    char const* line;
    // The command that tells whether the user wants to be asked; empty without one.
    char const* setting;
};

void PrintTo(LogOutCase const& tried, std::ostream* stream) { *stream << tried.label; }

constexpr LogOutCase GNOME{"GNOME",
                           "ubuntu:GNOME",
                           "org.gnome.SessionManager",
                           "/org/gnome/SessionManager",
                           "org.gnome.SessionManager.Logout(u) 0",
                           "gsettings"};

class LogOutTest : public testing::Test {
protected:
    // Programs of the desktop, in place of the computer's.
    void addProgram(std::string const& name, std::string const& script) const {
        std::string const program = m_desktop.folder.makeFile("bin/" + name, "#!/bin/sh\n" + script + "\n");
        ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    }
    void run(std::string const& mode, LogOutCase const& tried) {
        m_manager.emplace(
            std::vector<std::string>{FAKE_SESSION_MANAGER, mode, m_desktop.log(), tried.service, tried.path});
        ASSERT_EQ(m_desktop.lines(1).size(), 1u);
    }
    // Without the first one, which says that it runs.
    std::vector<std::string> calls() const {
        std::vector<std::string> lines = m_desktop.lines();
        if (!lines.empty()) lines.erase(lines.begin());
        return lines;
    }

    Desktop const m_desktop{};

private:
    EnvironmentVariable const m_path{"PATH", m_desktop.folder.makeFolder("bin")};
    std::optional<ChildProcess> m_manager{};
};

class LogOutOfDesktops : public LogOutTest, public testing::WithParamInterface<LogOutCase> {
    EnvironmentVariable const m_current{"XDG_CURRENT_DESKTOP", GetParam().desktop};
};

using Calls = std::vector<std::string>;

} // namespace

TEST_P(LogOutOfDesktops, AsksByTheCallThatShowsAQuestion) {
    run("serve", GetParam());
    EXPECT_EQ(obstacleToLoggingOut(), std::nullopt);
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(textOf(askToLogOut()), "");
    EXPECT_EQ(calls(), Calls{GetParam().line});
}

TEST_P(LogOutOfDesktops, IsNotToBeHadWithoutItsSessionManager) {
    EXPECT_EQ(obstacleToLoggingOut(), "The desktop's session manager does not run");
    EXPECT_EQ(kindOf(askToLogOut()), DesktopProblem::Kind::Refused);
}

TEST_P(LogOutOfDesktops, IsNotDoneIfTheUserWantsNoQuestion) {
    if (std::string(GetParam().setting).empty()) return;
    run("serve", GetParam());
    addProgram(GetParam().setting, "echo false");
    EXPECT_EQ(obstacleToLoggingOut(), "The desktop is set to log out without asking");
    EXPECT_EQ(kindOf(askToLogOut()), DesktopProblem::Kind::Refused);
    EXPECT_EQ(calls(), Calls());
    addProgram(GetParam().setting, "echo true");
    EXPECT_EQ(kindOf(askToLogOut()), std::nullopt);
    EXPECT_EQ(calls(), Calls{GetParam().line});
}

INSTANTIATE_TEST_SUITE_P(
    Desktops, LogOutOfDesktops,
    testing::Values(GNOME,
                    LogOutCase{"Budgie", "Budgie:GNOME", "org.gnome.SessionManager", "/org/gnome/SessionManager",
                               "org.gnome.SessionManager.Logout(u) 0", "gsettings"},
                    LogOutCase{"MATE", "MATE", "org.gnome.SessionManager", "/org/gnome/SessionManager",
                               "org.gnome.SessionManager.Logout(u) 0", "gsettings"},
                    LogOutCase{"Cinnamon", "X-Cinnamon", "org.gnome.SessionManager", "/org/gnome/SessionManager",
                               "org.gnome.SessionManager.Logout(u) 0", "gsettings"},
                    LogOutCase{"Xfce", "XFCE", "org.xfce.SessionManager", "/org/xfce/SessionManager",
                               "org.xfce.Session.Manager.Logout(bb) true true", "xfconf-query"},
                    LogOutCase{"Plasma", "KDE", "org.kde.LogoutPrompt", "/LogoutPrompt",
                               "org.kde.LogoutPrompt.promptLogout()", ""}),
    [](testing::TestParamInfo<LogOutCase> const& tried) { return tried.param.label; });

TEST_F(LogOutTest, ARefusalIsTold) {
    EnvironmentVariable const current("XDG_CURRENT_DESKTOP", "GNOME");
    run("refuse", GNOME);
    EXPECT_EQ(textOf(askToLogOut()), "The session manager refuses: It is locked");
}

TEST_F(LogOutTest, ASessionManagerWithoutReplyIsTold) {
    EnvironmentVariable const current("XDG_CURRENT_DESKTOP", "GNOME");
    run("silent", GNOME);
    EXPECT_EQ(kindOf(askToLogOut(std::chrono::milliseconds(100))), DesktopProblem::Kind::NoAnswer);
}

TEST_F(LogOutTest, LXQtAsksByItsDialogAlone) {
    EnvironmentVariable const current("XDG_CURRENT_DESKTOP", "LXQt");
    run("serve", LogOutCase{"LXQt", "LXQt", "org.lxqt.session", "/LXQtSession", "", ""});
    EXPECT_EQ(obstacleToLoggingOut(), "lxqt-leave is not installed");
    addProgram("lxqt-leave", "echo \"leave $#\" >> " + m_desktop.log());
    EXPECT_EQ(obstacleToLoggingOut(), std::nullopt);
    EXPECT_EQ(textOf(askToLogOut()), "");
    m_desktop.lines(2);
    EXPECT_EQ(calls(), Calls{"leave 0"});
}

TEST_F(LogOutTest, ADesktopWithoutARowIsNotLeft) {
    run("serve", GNOME);
    for (char const* const name : {"", "Enlightenment", "gnome", "X-Generic:sway"}) {
        EnvironmentVariable const current("XDG_CURRENT_DESKTOP", name);
        EXPECT_EQ(obstacleToLoggingOut(), "No desktop runs that is known to ask before it logs out");
        EXPECT_EQ(kindOf(askToLogOut()), DesktopProblem::Kind::Refused);
    }
    EXPECT_EQ(calls(), Calls());
}

TEST_F(LogOutTest, WithoutABusThereIsNoLogOut) {
    EnvironmentVariable const current("XDG_CURRENT_DESKTOP", "GNOME");
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    EXPECT_EQ(obstacleToLoggingOut(), "There is no session bus to reach the session manager by");
}

} // namespace mac::test
