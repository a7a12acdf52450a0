#include "platform/desktop/session/FrontProcess.h"
#include "platform/desktop/session/Patience.h"
#include "platform/desktop/session/X11Display.h"
#include "tests/platform/desktop/Desktop.h"
#include <chrono>
#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace mac::test {
namespace {

constexpr std::chrono::milliseconds Short{100};

// A server that takes connections and never says a word.
class SilentServer {
public:
    explicit SilentServer(std::string const& path) : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), std::min(path.size(), sizeof address.sun_path - 1));
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_socket, 8), 0);
    }
    ~SilentServer() { ::close(m_socket); }
    SilentServer(SilentServer const&) = delete;
    SilentServer& operator=(SilentServer const&) = delete;

private:
    int m_socket;
};

TEST(Patience, IsSharedByAllThatIsCalledInside) {
    EXPECT_EQ(Patience::left(), Patience::Longest) << "there is none yet";
    {
        Patience const patience{std::chrono::milliseconds::zero()};
        Patience const inner;
        EXPECT_EQ(Patience::left(), std::chrono::milliseconds::zero());
    }
    EXPECT_EQ(Patience::left(), Patience::Longest);
}

TEST(HungNeighbours, AStoppedBusIsGivenUp) {
    Desktop const desktop;
    desktop.install(desktop.fake("serve"));
    desktop.installService(desktop.fake("serve"));
    desktop.bus().sendSignal(SIGSTOP);
    Patience const patience(Short);
    EXPECT_FALSE(FileBrowserSession().revealItems({desktop.folder.makeFolder("shown")}).isDone());
    EXPECT_EQ(Patience::left(), std::chrono::milliseconds::zero());
    EXPECT_FALSE(FileBrowserSession().openFolders({desktop.folder.path("shown")}).isDone());
    desktop.bus().sendSignal(SIGCONT);
    EXPECT_TRUE(desktop.lines().empty()) << "nothing was begun";
}

TEST(HungNeighbours, ABusThatWakesUpIsUsedAgain) {
    Desktop const desktop;
    desktop.install(desktop.fake("serve"));
    desktop.installService(desktop.fake("serve"));
    std::string const folder = desktop.folder.makeFolder("shown");
    desktop.bus().sendSignal(SIGSTOP);
    {
        Patience const patience(Short);
        EXPECT_FALSE(FileBrowserSession().revealItems({folder}).isDone());
    }
    desktop.bus().sendSignal(SIGCONT);
    Patience const patience(std::chrono::minutes(5));
    EXPECT_EQ(textOf(FileBrowserSession(LongTimeouts).revealItems({folder})), "");
    EXPECT_EQ(desktop.lastLine(), "ShowItems file://" + folder);
}

TEST(HungNeighbours, ABrowserThatKeepsSilentIsAskedOnce) {
    Desktop const desktop;
    desktop.install(desktop.fake("silent"));
    desktop.installService(desktop.fake("silent"));
    std::string const folder = desktop.folder.makeFolder("shown");
    ASSERT_TRUE(launchBrowser());
    Patience const patience;
    FileBrowserSession const impatient(ShortTimeouts);
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(kindOf(impatient.revealItems({folder})), DesktopProblem::Kind::NoAnswer);
    EXPECT_EQ(desktop.lines(2).size(), 2U) << "its start and one request";
}

TEST(HungNeighbours, ASilentDisplayIsGivenUpAndThenNotWaitedFor) {
    TemporaryFolder const folder;
    SilentServer const server(folder.path("display"));
    EnvironmentVariable const display("DISPLAY", folder.path("display"));
    {
        Patience const patience(Short);
        EXPECT_EQ(X11Display::open(), nullptr);
    }
    // With all the time again, and a connection under way that hangs.
    EXPECT_EQ(X11Display::open(), nullptr);
    EXPECT_FALSE(bringToFront(::getpid()));
}

} // namespace
} // namespace mac::test
