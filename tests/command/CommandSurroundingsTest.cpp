#include "platform/system/FileDescriptor.h"
#include "tests/command/CommandRun.h"
#include "tests/support/Companion.h"
#include "tests/support/Failures.h"
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>

// The command beside neighbours that are missing or keep silent.

namespace framekeeper::test {
namespace {

// A socket that takes clients and never says a word, like a bus that hangs.
class SilentBus {
public:
    explicit SilentBus(std::string path) : m_path(std::move(path)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        EXPECT_LT(m_path.size(), sizeof address.sun_path);
        m_path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(m_socket.number(), reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
        constexpr int mostClients = 16;
        EXPECT_EQ(::listen(m_socket.number(), mostClients), 0);
    }

    std::string address() const { return "unix:path=" + m_path; }
    // How many clients have come since it was asked last.
    int countClients() const {
        int clients = 0;
        while (mac::FileDescriptor(::accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC)).isOpen())
            ++clients;
        return clients;
    }

private:
    std::string m_path;
    mac::FileDescriptor m_socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
};

class CommandSurroundings : public CommandTest {};

TEST_F(CommandSurroundings, SayThatACopyCouldNotBeShown) {
    mac::test::EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    m_desktop.install("/nonexistent/browser");
    CommandRun const done = run({"reveal", copyAt("a")});
    EXPECT_EQ(done.status, 1);
    EXPECT_NE(done.errors.find(": the file browser could not show it\n"), std::string::npos) << done.errors;
}

TEST_F(CommandSurroundings, SayWhyAListCouldNotBeWritten) {
    std::string const copy = copyAt("a");
    std::string uri = "file://" + copy;
    uri.replace(uri.find(' '), 1, "%20");
    m_desktop.folder.makeFile("config/gtk-3.0/bookmarks", uri + "\n");
    ASSERT_EQ(run({"login", "add", copyAt("b")}).status, 0);
    // A disk that takes nothing more.
    mac::test::withRefusedCall(SYS_fsync, ENOSPC, [&] {
        for (std::vector<std::string> const& words :
             {std::vector<std::string>{"login", "add", copy}, {"places", "remove", copy}}) {
            CommandRun const done = run(words);
            EXPECT_EQ(done.status, 1);
            EXPECT_NE(done.errors.find("No space left on device"), std::string::npos) << done.errors;
        }
        CommandRun const forPrograms = run({"login", "add", "--json", copy});
        EXPECT_NE(forPrograms.output.find("\"reason\": "), std::string::npos) << forPrograms.output;
    });
}

TEST_F(CommandSurroundings, WaitOnceForABusThatHangs) {
    mac::test::RunningCompanion deaf("deaf");
    SilentBus const bus(m_desktop.folder.path("bus"));
    mac::test::EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str());
    EXPECT_EQ(run({"quit", text(deaf.bundle())}).status, 0);
    EXPECT_EQ(bus.countClients(), 1);
    EXPECT_FALSE(deaf.isRunning());
}

} // namespace
} // namespace framekeeper::test
