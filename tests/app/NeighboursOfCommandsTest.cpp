#include "tests/app/ProgramInASession.h"
#include "tests/support/Commands.h"
#include <csignal>
#include <filesystem>
#include <fstream>

// Scripts, and the library's operations with them, while a neighbour of the program is stopped: the script ends and
// says what became of it, and nothing begins once the neighbour runs again.

namespace framekeeper::test {
namespace {

using mac::test::ChildProcess;

class NeighboursOfCommands : public testing::Test {
protected:
    void SetUp() override {
        std::optional<std::string> const obstacle = VirtualSession::obstacle();
        if (obstacle) GTEST_SKIP() << *obstacle;
        if (::access("/usr/bin/thunar", X_OK) != 0) GTEST_SKIP() << "thunar is not installed";
        m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=thunar.desktop\n");
        m_folder.makeFile("home/first/item", "");
        m_folder.makeFile("home/second/item", "");
        m_folder.makeFile("home/third/item", "");
        m_session = std::make_unique<VirtualSession>(m_folder.makeFolder("runtime"));
        ASSERT_TRUE(launchBrowser());
    }
    void TearDown() override {
        if (!m_session) return;
        EXPECT_TRUE(quitBrowser());
    }

    // The first line that the script prints, its result or what failed.
    static std::string answerTo(std::string const& script) {
        ChildProcess command({"/bin/sh", "-c", "exec \"$0\" -s o -e \"$1\" 2>&1", OSA, script});
        std::string line = command.readLine();
        command.wait();
        std::size_t const message = line.find("error: ");
        return message == std::string::npos ? line : line.substr(message);
    }
    std::string item(std::string const& folder) const {
        return "POSIX file \"" + m_folder.path("home/" + folder + "/item") + "\"";
    }
    static std::string tellFinder(std::string const& what) { return "tell application \"Finder\" to " + what; }
    void showTheLast() const {
        EXPECT_EQ(answerTo(tellFinder("reveal " + item("third"))), "");
        EXPECT_TRUE(VirtualSession::showsWindow("third - Thunar"));
    }
    static std::int32_t process() {
        std::vector<mac::ProcessIdentity> const processes = mac::fileBrowserProcesses();
        EXPECT_EQ(processes.size(), 1U);
        return processes.empty() ? 0 : processes.front().pid;
    }

    static constexpr char TimedOut[] = "error: Finder got an error: AppleEvent timed out. (-1712)";
    static constexpr char NoInteraction[] = "error: No user interaction allowed. (-1713)";

    TemporaryFolder const m_folder{};
    std::unique_ptr<VirtualSession> m_session{};

private:
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    EnvironmentVariable const m_platform{"QT_QPA_PLATFORM", std::nullopt};
};

TEST_F(NeighboursOfCommands, DoNotHoldAScriptWhenTheDisplayIsStopped) {
    m_session->sendSignalToDisplay(SIGSTOP);
    EXPECT_EQ(answerTo("try\ndisplay dialog \"late\"\non error number n\nn\nend try"), "-1713");
    EXPECT_EQ(answerTo("set the clipboard to \"late\""), NoInteraction);
    EXPECT_EQ(answerTo("1 + 1"), "2");
    EXPECT_EQ(answerTo("path to frontmost application").substr(0, 7), "error: ");
    m_session->sendSignalToDisplay(SIGCONT);
    std::string contents;
    EXPECT_TRUE(waitUntil([&] { return (contents = answerTo("the clipboard")) != NoInteraction; }));
    EXPECT_EQ(contents, "") << "nothing was put there later";
}

TEST_F(NeighboursOfCommands, DoNotActivateTheBrowserLater) {
    m_session->sendSignalToDisplay(SIGSTOP);
    EXPECT_EQ(answerTo(tellFinder("activate")), TimedOut);
    m_session->sendSignalToDisplay(SIGCONT);
    showTheLast();
    EXPECT_EQ(VirtualSession::countWindows("home - Thunar"), 0U);
}

TEST_F(NeighboursOfCommands, AStoppedBusEndsEachRequest) {
    std::int32_t const before = process();
    m_session->sendSignalToBus(SIGSTOP);
    EXPECT_EQ(answerTo(tellFinder("reveal " + item("first"))), TimedOut);
    EXPECT_EQ(answerTo(tellFinder("open " + item("second"))).substr(0, 7), "error: ");
    EXPECT_EQ(answerTo(tellFinder("quit")).substr(0, 7), "error: ");
    m_session->sendSignalToBus(SIGCONT);
    showTheLast();
    EXPECT_EQ(VirtualSession::countWindows("first - Thunar"), 0U);
    EXPECT_EQ(VirtualSession::countWindows("second - Thunar"), 0U);
    EXPECT_EQ(process(), before);
}

TEST_F(NeighboursOfCommands, AStoppedBrowserIsAskedOnceForAllItems) {
    std::int32_t const browser = process();
    mac::test::sendSignalTo(browser, SIGSTOP);
    EXPECT_EQ(answerTo(tellFinder("reveal {" + item("first") + ", " + item("second") + "}")), TimedOut);
    mac::test::sendSignalTo(browser, SIGCONT);
    EXPECT_TRUE(VirtualSession::showsWindow("first - Thunar"));
    showTheLast();
    EXPECT_EQ(VirtualSession::countWindows("first - Thunar"), 1U);
    EXPECT_LE(VirtualSession::countWindows("second - Thunar"), 1U);
    EXPECT_EQ(VirtualSession::countWindows("home - Thunar"), 0U);
}

} // namespace
} // namespace framekeeper::test
