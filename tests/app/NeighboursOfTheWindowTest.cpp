#include "tests/app/ProgramInASession.h"
#include "tests/support/Commands.h"
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

// The window's actions while a neighbour is stopped: each says what became of it, and nothing begins once the neighbour
// runs again. The display is not among them, since a window cannot do without it.

namespace framekeeper::test {
namespace {

// Stops a process for as long as the object lives, unless it is let go on before.
class Stopped {
public:
    explicit Stopped(std::function<void(int)> sendSignal) : m_sendSignal(std::move(sendSignal)) {
        m_sendSignal(SIGSTOP);
    }
    ~Stopped() { goOn(); }
    Stopped(Stopped const&) = delete;
    Stopped& operator=(Stopped const&) = delete;

    void goOn() {
        if (!std::exchange(m_isOver, true)) m_sendSignal(SIGCONT);
    }

private:
    std::function<void(int)> m_sendSignal;
    bool m_isOver{false};
};

class NeighboursOfTheWindow : public ProgramInASession {
protected:
    void SetUp() override {
        if (::access("/usr/bin/thunar", X_OK) != 0) GTEST_SKIP() << "thunar is not installed";
        ProgramInASession::SetUp();
        if (IsSkipped()) return;
        std::filesystem::create_directories(m_home + "/.config/gtk-3.0");
        std::ofstream(m_home + "/.config/mimeapps.list") << "[Default Applications]\ninode/directory=thunar.desktop\n";
        std::ofstream(bookmarks()) << "file://" + m_home + "/Applications/Mirror%20Frame.app A copy\n";
        ASSERT_TRUE(launchBrowser());
        startProgram();
        // While the session's bus is stopped it cannot be asked for the other one.
        std::string const address = use({"bus"});
        m_accessibilityBus.emplace("AT_SPI_BUS_ADDRESS", address.substr(0, address.find('\n')));
    }
    void TearDown() override {
        if (!m_program) return;
        EXPECT_TRUE(quitBrowser());
    }

    std::string bookmarks() const { return m_home + "/.config/gtk-3.0/bookmarks"; }
    static std::string wholeFile(std::string const& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    Stopped stoppedBus() const {
        return Stopped([this](int signal) { m_session->sendSignalToBus(signal); });
    }
    static std::int32_t browserProcess() {
        std::vector<mac::ProcessIdentity> const processes = mac::fileBrowserProcesses();
        EXPECT_EQ(processes.size(), 1U);
        return processes.empty() ? 0 : processes.front().pid;
    }
    static Stopped stoppedBrowser() {
        return Stopped([process = browserProcess()](int signal) { mac::test::sendSignalTo(process, signal); });
    }
    // What the window says when it could not show a copy: the action is over by then.
    static constexpr char NotShown[] = "That could not be done.";
    // Shows a copy whose folder no other step of the test shows: what was asked for before it has been done by then.
    void showTheLastCopy() const {
        select(pathOfCopy("Downloads/Old Versions/1.9"));
        press("return");
        EXPECT_TRUE(VirtualSession::showsWindow("1.9 - Thunar"));
    }

    static constexpr char Title[] = "Applications - Thunar";

private:
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", "/usr/share"};
    std::optional<EnvironmentVariable> m_accessibilityBus{};
};

TEST_F(NeighboursOfTheWindow, WithoutTheBusACopyIsNotShownLater) {
    select(pathOfCopy("Applications"));
    Stopped bus = stoppedBus();
    press("return");
    EXPECT_TRUE(says(NotShown));
    bus.goOn();
    showTheLastCopy();
    EXPECT_EQ(VirtualSession::countWindows(Title), 0U);
}

TEST_F(NeighboursOfTheWindow, WithoutTheBusAnIconIsSwappedAndTheCopyIsNotShownLater) {
    std::string const path = pathOfCopy("Applications");
    select(path);
    Stopped bus = stoppedBus();
    press("ctrl+i");
    EXPECT_TRUE(says("Could not reveal in Finder."));
    bus.goOn();
    EXPECT_NE(wholeFile(path + "/Contents/Info.plist").find("mirrorframe2"), std::string::npos);
    showTheLastCopy();
    EXPECT_EQ(VirtualSession::countWindows(Title), 0U);
}

TEST_F(NeighboursOfTheWindow, WithoutTheBusACopyIsTrashedAndPutBack) {
    std::string const path = pathOfCopy("media/Mirror Frame 2.1");
    select(path);
    Stopped const bus = stoppedBus();
    press("delete");
    EXPECT_TRUE(says("Moved to the trash."));
    EXPECT_FALSE(std::filesystem::exists(path));
    press("ctrl+z");
    EXPECT_TRUE(says("Put back."));
    EXPECT_TRUE(std::filesystem::exists(path));
    select(path);
    press("shift+delete");
    EXPECT_TRUE(listsNoMore(path));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(NeighboursOfTheWindow, WithoutTheBusLoginItemsChange) {
    select(pathOfCopy("media/Mirror Frame 2.1"));
    Stopped const bus = stoppedBus();
    press("ctrl+l");
    EXPECT_TRUE(says("Added to the login items."));
    press("ctrl+z");
    EXPECT_TRUE(says("The login items are as before."));
}

TEST_F(NeighboursOfTheWindow, WithoutTheBusACopyIsNotQuitLater) {
    std::unique_ptr<ChildProcess> const copy = startCopy("Applications");
    std::string const path = pathOfCopy("Applications");
    select(path);
    press("f5");
    ASSERT_TRUE(showsAsRunning(path, "Yes"));
    select(path);
    Stopped bus = stoppedBus();
    press("ctrl+k");
    EXPECT_TRUE(says("Could not quit process."));
    bus.goOn();
    showTheLastCopy();
    EXPECT_TRUE(showsAsRunning(path, "Yes"));
    copy->sendSignal(SIGTERM);
    EXPECT_EQ(copy->wait(), -SIGTERM);
}

TEST_F(NeighboursOfTheWindow, WithoutTheBusTheFileBrowserIsNotRestartedLater) {
    std::int32_t const process = browserProcess();
    select(pathOfCopy("Applications"));
    Stopped bus = stoppedBus();
    press("ctrl+shift+b");
    EXPECT_TRUE(says("Could not quit Finder."));
    EXPECT_EQ(wholeFile(bookmarks()), "");
    bus.goOn();
    showTheLastCopy();
    EXPECT_EQ(browserProcess(), process);
}

TEST_F(NeighboursOfTheWindow, AStoppedFileBrowserIsAskedOnce) {
    select(pathOfCopy("Applications"));
    Stopped browser = stoppedBrowser();
    press("return");
    EXPECT_TRUE(says(NotShown));
    browser.goOn();
    // The one request that was under way.
    EXPECT_TRUE(VirtualSession::showsWindow(Title));
    showTheLastCopy();
    EXPECT_EQ(VirtualSession::countWindows(Title), 1U);
    EXPECT_EQ(VirtualSession::countWindows("home - Thunar"), 0U) << "no folder above is shown in its place";
}

TEST_F(NeighboursOfTheWindow, AnIconIsSwappedBesideAStoppedFileBrowser) {
    select(pathOfCopy("Applications"));
    Stopped browser = stoppedBrowser();
    press("ctrl+i");
    EXPECT_TRUE(says("Could not reveal in Finder."));
    press("ctrl+z");
    EXPECT_TRUE(says("The former icon is back."));
    browser.goOn();
    EXPECT_TRUE(VirtualSession::showsWindow(Title));
    showTheLastCopy();
    EXPECT_EQ(VirtualSession::countWindows(Title), 1U);
}

TEST_F(NeighboursOfTheWindow, AStoppedFileBrowserIsNotStartedASecondTime) {
    select(pathOfCopy("Applications"));
    Stopped browser = stoppedBrowser();
    press("ctrl+shift+b");
    EXPECT_TRUE(says("Could not quit Finder."));
    EXPECT_EQ(wholeFile(bookmarks()), "");
    browser.goOn();
    // The browser was quitting, and no second one was started.
    EXPECT_TRUE(waitUntil([] { return mac::fileBrowserProcesses().empty(); }));
    showTheLastCopy();
}

} // namespace
} // namespace framekeeper::test
