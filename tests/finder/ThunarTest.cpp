#include "platform/finder/FileBrowserProcess.h"
#include "tests/finder/Desktop.h"
#include "tests/support/CommandOutput.h"
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace mac::test {
namespace {

// A display that nobody sees, for as long as the object lives.
class VirtualDisplay {
public:
    VirtualDisplay()
        : m_server(
              endingWithThisProcess({"Xvfb", "-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp"})) {}

    std::string name() const { return m_name; }

private:
    ChildProcess m_server;
    std::string m_name{":" + m_server.readLine()};
};

// A real file browser at a display and a bus of the test's own.
class Thunar : public testing::Test {
protected:
    void SetUp() override {
        for (char const* const program :
             {"/usr/bin/thunar", "/usr/bin/Xvfb", "/usr/bin/xwininfo", "/usr/bin/dbus-daemon"}) {
            if (::access(program, X_OK) != 0) GTEST_SKIP() << program << " is not installed";
        }
        m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=thunar.desktop\n");
        m_session = std::make_unique<Session>(m_folder);
    }
    void TearDown() override {
        if (m_session) quitFileBrowser();
        forgetFileBrowserStart();
    }

    static bool showsWindow(std::string const& title) {
        return waitUntil([&] {
            return outputOf({"xwininfo", "-root", "-tree"}).find("\"" + title + "\"") != std::string::npos;
        });
    }

    TemporaryFolder const m_folder{};

private:
    struct Session {
        explicit Session(TemporaryFolder const& folder)
            : data("XDG_DATA_HOME", folder.path("data")), dataFolders("XDG_DATA_DIRS", "/usr/share"),
              config("XDG_CONFIG_HOME", folder.path("config")), home("HOME", folder.makeFolder("home")),
              runtime("XDG_RUNTIME_DIR", folder.makeFolder("runtime")), display("DISPLAY", screen.name()),
              wayland("WAYLAND_DISPLAY", ""), bus(std::make_unique<PrivateBus>()),
              address("DBUS_SESSION_BUS_ADDRESS", bus->address()) {}

        EnvironmentVariable data;
        EnvironmentVariable dataFolders;
        EnvironmentVariable config;
        EnvironmentVariable home;
        EnvironmentVariable runtime;
        // The titles are looked at.
        EnvironmentVariable locale{"LC_ALL", "C.UTF-8"};
        EnvironmentVariable language{"LANGUAGE", ""};
        VirtualDisplay screen{};
        EnvironmentVariable display;
        EnvironmentVariable wayland;
        std::unique_ptr<PrivateBus> bus;
        EnvironmentVariable address;
    };
    std::unique_ptr<Session> m_session{};
};

TEST_F(Thunar, ShowsItemsFoldersAndInformation) {
    std::string const file = m_folder.makeFile("my items/letter.txt", "");
    FinderOutcome const revealed = revealItems({file});
    ASSERT_TRUE(revealed.isDone()) << revealed.reason;
    EXPECT_TRUE(showsWindow("my items - Thunar"));
    EXPECT_EQ(fileBrowserProcesses().size(), 1U) << "the bus has started no other";
    EXPECT_TRUE(showInformation({file}).isDone());
    EXPECT_TRUE(showsWindow("letter.txt - Properties"));
    EXPECT_TRUE(openItem(m_folder.makeFolder("other folder")).isDone());
    EXPECT_TRUE(showsWindow("other folder - Thunar"));
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
}

TEST_F(Thunar, ShowsNamesThatAreNoText) {
    std::string const file = m_folder.makeFile("caf\xE9 %41/\xFF", "");
    FinderOutcome const revealed = revealItems({file});
    ASSERT_TRUE(revealed.isDone()) << revealed.reason;
    EXPECT_TRUE(openFolders({m_folder.path("caf\xE9 %41")}).isDone());
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
}

TEST_F(Thunar, QuitsAndIsStartedAgain) {
    ASSERT_TRUE(openFolders({m_folder.makeFolder("first")}).isDone());
    std::vector<ProcessIdentity> const before = fileBrowserProcesses();
    ASSERT_EQ(before.size(), 1U);
    FinderOutcome const outcome = quitFileBrowser();
    EXPECT_TRUE(outcome.isDone()) << outcome.reason;
    EXPECT_TRUE(launchFileBrowser().isDone());
    std::vector<ProcessIdentity> const after = fileBrowserProcesses();
    ASSERT_EQ(after.size(), 1U);
    EXPECT_FALSE(after[0] == before[0]);
    EXPECT_TRUE(openFolders({m_folder.makeFolder("second")}).isDone());
    EXPECT_TRUE(showsWindow("second - Thunar"));
}

TEST_F(Thunar, ShowsTheHomeFolderWhenItIsActivated) {
    FinderOutcome const outcome = activateFileBrowser();
    EXPECT_TRUE(outcome.isDone()) << outcome.reason;
    EXPECT_TRUE(showsWindow("home - Thunar"));
}

} // namespace
} // namespace mac::test
