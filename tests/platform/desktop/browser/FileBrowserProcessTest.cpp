#include "platform/desktop/session/Patience.h"
#include "platform/desktop/session/Session.h"
#include "tests/platform/desktop/Desktop.h"
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Lines = std::vector<std::string>;

class FileBrowserProcess : public testing::Test {
protected:
    void TearDown() override {
        // Ends the browsers that do not end by themselves; only the test's own are on its bus.
        for (ProcessIdentity const& process : fileBrowserProcesses())
            ::kill(process.pid, SIGKILL);
    }

    void install(std::string const& mode, std::string const& rest = "") const {
        m_desktop.install(m_desktop.fake(mode) + " by entry", rest);
        m_desktop.installService(m_desktop.fake(mode));
    }
    static bool isGone() {
        return waitUntil([] { return fileBrowserProcesses().empty(); });
    }

    Desktop const m_desktop{};
    // On a busy computer it starts, answers and quits later than a user would wait for it.
    Patience const m_patience{std::chrono::minutes(5)};
    FileBrowserSession const m_browser{LongTimeouts};
};

TEST_F(FileBrowserProcess, IsStartedByItsEntryAndWaitedFor) {
    install("serve");
    EXPECT_TRUE(fileBrowserProcesses().empty());
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(isFileBrowserServiceOffered(), true);
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(m_desktop.lines(), Lines{"started serve by entry"});
}

TEST_F(FileBrowserProcess, QuitsByItsOwnCommand) {
    install("serve", "Actions=Open;Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + m_desktop.fake("quit") + "\n");
    ASSERT_TRUE(m_browser.launch().isDone());
    DesktopOutcome const outcome = m_browser.quit();
    EXPECT_TRUE(outcome.isDone()) << textOf(outcome);
    EXPECT_EQ(m_desktop.lines(), (Lines{"started serve by entry", "started quit", "asked to quit"}));
    EXPECT_TRUE(isGone()) << "the command itself may take longer to end than the browser that it was for";
}

TEST_F(FileBrowserProcess, IsAskedAsAnyProcessWhereItHasNoCommand) {
    install("serve");
    ASSERT_TRUE(m_browser.launch().isDone());
    EXPECT_TRUE(m_browser.quit().isDone());
    EXPECT_TRUE(fileBrowserProcesses().empty());
}

TEST_F(FileBrowserProcess, HasQuitWhereItDoesNotRun) {
    EXPECT_EQ(kindOf(m_browser.quit()), DesktopProblem::Kind::NoApplication);
    install("serve");
    EXPECT_TRUE(m_browser.quit().isDone());
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FileBrowserProcess, IsNotForcedToQuit) {
    install("stubborn");
    ASSERT_TRUE(m_browser.launch().isDone());
    FileBrowserSession const impatient(ShortTimeouts);
    EXPECT_EQ(kindOf(impatient.quit()), DesktopProblem::Kind::NoAnswer);
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
}

TEST_F(FileBrowserProcess, IsStartedAgainAsItWasStarted) {
    install("serve");
    std::string const folder = m_desktop.folder.makeFolder("a folder");
    ChildProcess browser({"/usr/bin/env", "-C", folder, fakeFileBrowser(), "serve", m_desktop.log(), "", "in"});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    std::vector<ProcessIdentity> const processes = fileBrowserProcesses();
    ASSERT_EQ(processes.size(), 1U);
    EXPECT_TRUE(askToQuit(processes[0]));
    EXPECT_EQ(browser.wait(), -SIGTERM) << "it has no command for that";
    ASSERT_TRUE(isGone());
    EXPECT_FALSE(askToQuit(processes[0]));
    EXPECT_TRUE(m_browser.launch().isDone());
    std::string const line = "started serve  in " + folder;
    EXPECT_EQ(m_desktop.lines(), (Lines{line, line}));
}

TEST_F(FileBrowserProcess, OfSeveralIsStartedAgainAlone) {
    m_desktop.install(m_desktop.fake("nameless") + " by entry");
    ChildProcess first({fakeFileBrowser(), "nameless", m_desktop.log(), "first"});
    ASSERT_EQ(m_desktop.lines(1).size(), 1U);
    ChildProcess const second({fakeFileBrowser(), "nameless", m_desktop.log(), "second"});
    ASSERT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_TRUE(askToQuit(fileBrowserProcesses().at(0)));
    EXPECT_EQ(first.wait(), -SIGTERM);
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(m_desktop.lines(3),
              (Lines{"started nameless first", "started nameless second", "started nameless first"}));
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(fileBrowserProcesses().size(), 2U) << "it has come back";
}

TEST_F(FileBrowserProcess, ThatCameBackByItselfIsNotStarted) {
    m_desktop.install(m_desktop.fake("nameless") + " by entry");
    ChildProcess first({fakeFileBrowser(), "nameless", m_desktop.log(), "first"});
    ASSERT_EQ(m_desktop.lines(1).size(), 1U);
    EXPECT_TRUE(askToQuit(fileBrowserProcesses().at(0)));
    EXPECT_EQ(first.wait(), -SIGTERM);
    ChildProcess const second({fakeFileBrowser(), "nameless", m_desktop.log(), "by the session"});
    ASSERT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
}

// The desktop's icons are drawn by a process that its session starts with a switch.
TEST_F(FileBrowserProcess, ThatDrawsTheDesktopDrawsItAgain) {
    install("serve", "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + m_desktop.fake("quit") + "\n");
    ChildProcess const browser({fakeFileBrowser(), "serve", m_desktop.log(), "--desktop", "--profile=lxqt"});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    EXPECT_TRUE(m_browser.openFolders({m_desktop.folder.makeFolder("shown")}).isDone());
    EXPECT_TRUE(askToQuit(fileBrowserProcesses().at(0)));
    ASSERT_TRUE(isGone());
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(m_desktop.lastLine(), "started serve --desktop --profile=lxqt");
}

TEST_F(FileBrowserProcess, ThatIsAScriptIsStartedAgainAsItWasStarted) {
    std::string const script = m_desktop.folder.makeFile("browser", "#!/bin/sh -u\necho \"$0 $*\" >>'" +
                                                                        m_desktop.log() + "'\nread -r line\n");
    ASSERT_EQ(::chmod(script.c_str(), 0755), 0);
    m_desktop.install(script + " by entry");
    ChildProcess browser({script, "as it was"});
    std::string const line = script + " as it was";
    ASSERT_EQ(m_desktop.lines(1), Lines{line});
    ASSERT_EQ(fileBrowserProcesses().size(), 1U);
    EXPECT_TRUE(m_browser.quit().isDone());
    EXPECT_EQ(browser.wait(), -SIGTERM);
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(m_desktop.lines(2), (Lines{line, line}));
}

TEST_F(FileBrowserProcess, IsStartedInATerminalWhereItNeedsOne) {
    std::string const terminal = m_desktop.folder.makeFile(
        "bin/x-terminal-emulator", "#!/bin/sh\necho \"terminal $*\" >>'" + m_desktop.log() + "'\n");
    ASSERT_EQ(::chmod(terminal.c_str(), 0755), 0);
    EnvironmentVariable const path("PATH", m_desktop.folder.path("bin") + ":/usr/bin:/bin");
    m_desktop.install("/bin/cat by entry", "Terminal=true\n");
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_TRUE(m_desktop.lines(1).at(0).starts_with("terminal -e /")) << m_desktop.lastLine();
}

TEST_F(FileBrowserProcess, MayTakeItsTimeAfterItsOwnCommand) {
    install("serve", "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + m_desktop.fake("open") + "\n");
    ASSERT_TRUE(m_browser.launch().isDone());
    FileBrowserSession const impatient(ShortTimeouts);
    EXPECT_EQ(kindOf(impatient.quit()), DesktopProblem::Kind::NoAnswer);
    EXPECT_EQ(fileBrowserProcesses().size(), 1U) << "it got no signal";
}

TEST_F(FileBrowserProcess, IsNotTheCommandThatMakesItQuit) {
    std::string const command = m_desktop.fake("nameless");
    install("serve", "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + command + "\n");
    ASSERT_TRUE(m_browser.launch().isDone());
    std::vector<ProcessIdentity> const before = fileBrowserProcesses();
    ASSERT_EQ(before.size(), 1U);
    EXPECT_TRUE(askToQuit(before[0]));
    EXPECT_EQ(m_desktop.lines(2).back(), "started nameless");
    EXPECT_EQ(fileBrowserProcesses(), before);
    for (ProcessIdentity const& process : sessionProcessesOf(fakeFileBrowser()))
        ::kill(process.pid, SIGKILL);
}

// A leak checker, for one, examines its program from a child process of the same executable.
TEST_F(FileBrowserProcess, IsNoChildOfTheCommandThatMakesItQuit) {
    std::string const command = m_desktop.fake("quit-and-linger");
    install("serve", "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + command + "\n");
    ASSERT_TRUE(m_browser.launch().isDone());
    EXPECT_TRUE(m_browser.quit().isDone());
    EXPECT_FALSE(sessionProcessesOf(fakeFileBrowser()).empty()) << "the child has ended";
    EXPECT_TRUE(fileBrowserProcesses().empty());
    EXPECT_TRUE(m_browser.launch().isDone());
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
    for (ProcessIdentity const& process : sessionProcessesOf(fakeFileBrowser()))
        ::kill(process.pid, SIGKILL);
}

TEST_F(FileBrowserProcess, IsAskedToQuitByItsOwnCommandFirst) {
    install("serve", "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + m_desktop.fake("quit") + "\n");
    ASSERT_TRUE(m_browser.launch().isDone());
    EXPECT_TRUE(askToQuit(fileBrowserProcesses().at(0)));
    EXPECT_TRUE(isGone());
    EXPECT_EQ(m_desktop.lastLine(), "asked to quit");
}

TEST_F(FileBrowserProcess, OfAnotherSessionIsNotItsOwn) {
    install("serve");
    PrivateBus const other;
    EnvironmentVariable address("DBUS_SESSION_BUS_ADDRESS", other.address());
    ChildProcess const browser({fakeFileBrowser(), "serve", m_desktop.log()});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
    EnvironmentVariable const third("DBUS_SESSION_BUS_ADDRESS", "unix:path=/elsewhere");
    EXPECT_TRUE(fileBrowserProcesses().empty());
}

TEST_F(FileBrowserProcess, ShowsTheHomeFolderWhenItIsActivated) {
    install("serve");
    EXPECT_TRUE(m_browser.activate().isDone());
    EXPECT_EQ(m_desktop.lines(),
              (Lines{"started serve by entry", "ShowFolders file://" + m_desktop.folder.path("home")}));
}

TEST_F(FileBrowserProcess, IsNotStartedWithoutADisplay) {
    install("serve");
    EnvironmentVariable const none("DISPLAY", "");
    EXPECT_EQ(kindOf(m_browser.launch()), DesktopProblem::Kind::NoDisplay);
    EXPECT_EQ(kindOf(m_browser.activate()), DesktopProblem::Kind::NoDisplay);
    EXPECT_TRUE(m_desktop.lines().empty());
}

} // namespace
} // namespace mac::test
