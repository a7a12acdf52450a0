#include "tests/finder/ThunarDesktop.h"
#include "platform/finder/FileBrowserProcess.h"
#include "tests/support/CommandOutput.h"
#include <csignal>

namespace mac::test {

namespace {

constexpr char AccessibilityBus[] = "/usr/libexec/at-spi-bus-launcher";

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

} // namespace

struct ThunarDesktop::Session {
    explicit Session(TemporaryFolder const& folder)
        : data("XDG_DATA_HOME", folder.path("data")), dataFolders("XDG_DATA_DIRS", "/usr/share"),
          config("XDG_CONFIG_HOME", folder.path("config")), home("HOME", folder.makeFolder("home")),
          runtime("XDG_RUNTIME_DIR", folder.makeFolder("runtime")), display("DISPLAY", screen.name()),
          wayland("WAYLAND_DISPLAY", ""), bus(std::make_unique<PrivateBus>()),
          address("DBUS_SESSION_BUS_ADDRESS", bus->address()),
          accessibility(endingWithThisProcess({AccessibilityBus, "--launch-immediately"}, "TERM")) {}
    // Asked, it ends its own bus, too.
    ~Session() {
        accessibility.sendSignal(SIGTERM);
        accessibility.wait();
    }
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

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
    ChildProcess accessibility;
};

ThunarDesktop::ThunarDesktop() = default;
ThunarDesktop::~ThunarDesktop() = default;

void ThunarDesktop::SetUp() {
    for (char const* const program :
         {"/usr/bin/thunar", "/usr/bin/Xvfb", "/usr/bin/xwininfo", "/usr/bin/dbus-daemon", AccessibilityBus}) {
        if (::access(program, X_OK) != 0) GTEST_SKIP() << program << " is not installed";
    }
    m_folder.makeFile("config/mimeapps.list", "[Default Applications]\ninode/directory=thunar.desktop\n");
    m_session = std::make_unique<Session>(m_folder);
    // Whoever starts before that bus is there is never read.
    ASSERT_TRUE(waitUntil([] { return outputOf({LIST_ACCESSIBLE, "--ready"}) == "yes\n"; }));
}

void ThunarDesktop::TearDown() {
    if (m_session) quitFileBrowser();
    forgetFileBrowserStart();
}

bool ThunarDesktop::showsWindow(std::string const& title) {
    return waitUntil([&] {
        return outputOf({"xwininfo", "-root", "-tree"}).find("\"" + title + "\"") != std::string::npos;
    });
}

bool ThunarDesktop::showsElement(std::string const& beginning) {
    return waitUntil([&] { return ("\n" + outputOf({LIST_ACCESSIBLE})).find("\n" + beginning) != std::string::npos; });
}

} // namespace mac::test
