#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/FileDescriptor.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/Commands.h"
#include "tests/support/DiskContents.h"
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

// Volume and speech with the programs that do them: a real sound server and a real speech synthesizer.

namespace mac::applescript::test {

namespace {

using mac::test::ChildProcess;
using mac::test::EnvironmentVariable;

std::string spokenOutcomeOf(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    EXPECT_TRUE(script) << utf8FromUnits(error.message);
    ScriptOutcome const outcome = script->run({});
    if (!outcome.error) return utf8FromUnits(sourceForm(outcome.value));
    return utf8FromUnits(outcome.error->message) + " (" + std::to_string(outcome.error->number) + ")";
}

// Asks every 10 ms, without the run loop: once there is one, this process answers events on the bus of that moment, and
// no later trial could give it another. False after a minute.
bool holdsInTime(std::function<bool()> const& condition) {
    constexpr int milliseconds = 10;
    auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        ::poll(nullptr, 0, milliseconds);
    }
    return true;
}

bool succeeds(std::vector<std::string> const& command) {
    try {
        mac::test::outputOf(command);
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

bool isListenedTo(std::string const& socketPath) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (socketPath.size() >= sizeof(address.sun_path)) return false;
    socketPath.copy(address.sun_path, socketPath.size());
    FileDescriptor const client(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return ::connect(client.number(), reinterpret_cast<sockaddr const*>(&address), sizeof(address)) == 0;
}

// A script's home has no programs; these trials need those of the computer.
constexpr char const* ProgramsOfThisComputer = "/usr/bin:/bin";

// A sound server with one output and one input that lead nowhere.
class SoundServer : public testing::Test {
protected:
    void SetUp() override {
        for (char const* const program :
             {"/usr/bin/pipewire", "/usr/bin/pipewire-pulse", "/usr/bin/wireplumber", "/usr/bin/pactl"})
            if (::access(program, X_OK) != 0) GTEST_SKIP() << program << " is not installed";
        ASSERT_EQ(::chmod(m_runtime.c_str(), S_IRWXU), 0);
        // Both pactl and the server make this folder if it is missing, and the server ends if pactl was faster.
        ASSERT_EQ(::chmod(m_home.folder().makeFolder("runtime/pulse").c_str(), S_IRWXU), 0);
        startServer("pipewire");
        // The others end if they find no server, as they do where its socket is there and nothing listens to it yet.
        ASSERT_TRUE(holdsInTime([this] { return isListenedTo(m_runtime + "/pipewire-0"); })) << wordsOfServers();
        startServer("wireplumber");
        startServer("pipewire-pulse");
        ASSERT_TRUE(holdsInTime([] { return succeeds({"/usr/bin/pactl", "info"}); })) << wordsOfServers();
        mac::test::outputOf({"/usr/bin/pactl", "load-module", "module-null-sink", "sink_name=out"});
        mac::test::outputOf({"/usr/bin/pactl", "load-module", "module-null-sink", "media.class=Audio/Source/Virtual",
                             "sink_name=in", "channel_map=front-left,front-right"});
        ASSERT_TRUE(holdsInTime([] {
            return succeeds({"/usr/bin/pactl", "get-sink-volume", "out"}) &&
                   mac::test::outputOf({"/usr/bin/pactl", "get-default-sink"}) == "out\n" &&
                   mac::test::outputOf({"/usr/bin/pactl", "get-default-source"}) == "in\n";
        })) << wordsOfServers();
    }

    void startServer(std::string const& program) {
        m_servers.push_back(std::make_unique<ChildProcess>(
            mac::test::endingWithThisProcess({"/bin/sh", "-c", "exec " + program + " >>\"$1\" 2>&1", "sh", m_words})));
    }

    std::string wordsOfServers() const { return mac::test::textOf(m_words); }

    ScriptHome const m_home{};
    std::string const m_runtime{m_home.folder().makeFolder("runtime")};
    std::string const m_words{m_home.path("servers.log")};

private:
    EnvironmentVariable const m_programs{"PATH", ProgramsOfThisComputer};
    EnvironmentVariable const m_runtimeFolder{"XDG_RUNTIME_DIR", m_runtime};
    EnvironmentVariable const m_state{"XDG_STATE_HOME", m_home.path("state")};
    // The server's session would start a file system of its own in the runtime folder.
    EnvironmentVariable const m_files{"GIO_USE_VFS", "local"};
    // Which the server's session ends without.
    mac::test::PrivateBus const m_bus{};
    EnvironmentVariable const m_address{"DBUS_SESSION_BUS_ADDRESS", m_bus.address()};
    std::vector<std::unique_ptr<ChildProcess>> m_servers{};
};

TEST_F(SoundServer, SetsAndTellsTheVolumes) {
    EXPECT_EQ(spokenOutcomeOf(u"set volume output volume 30\nset volume input volume 40\nget volume settings"),
              "{output volume:30, input volume:40, alert volume:missing value, output muted:false}");
    EXPECT_EQ(spokenOutcomeOf(u"set volume 3.5\noutput volume of (get volume settings)"), "50");
    EXPECT_EQ(spokenOutcomeOf(u"set volume output volume 1000\noutput volume of (get volume settings)"), "100");
    EXPECT_EQ(spokenOutcomeOf(u"set volume with output muted\noutput muted of (get volume settings)"), "true");
    EXPECT_EQ(spokenOutcomeOf(u"set volume without output muted\noutput muted of (get volume settings)"), "false");
    EXPECT_EQ(mac::test::outputOf({"/usr/bin/pactl", "get-sink-mute", "out"}), "Mute: no\n");
}

TEST(SoundWithoutServer, CannotBeChanged) {
    if (::access("/usr/bin/pactl", X_OK) != 0) GTEST_SKIP() << "pactl is not installed";
    ScriptHome const home;
    EnvironmentVariable const runtime("XDG_RUNTIME_DIR", home.folder().makeFolder("runtime"));
    EnvironmentVariable const installed("PATH", ProgramsOfThisComputer);
    EXPECT_TRUE(spokenOutcomeOf(u"set volume output volume 30").ends_with(" (1)"));
    EnvironmentVariable const programs("PATH", home.path("none"));
    EXPECT_TRUE(spokenOutcomeOf(u"get volume settings").ends_with(" (-192)"));
}

TEST(Speech, IsWrittenIntoAFile) {
    if (::access("/usr/bin/espeak-ng", X_OK) != 0) GTEST_SKIP() << "espeak-ng is not installed";
    ScriptHome const home;
    EnvironmentVariable const installed("PATH", ProgramsOfThisComputer);
    auto const say = [&](std::u16string const& parameters, std::string const& file) {
        EXPECT_EQ(spokenOutcomeOf(u"say \"Good morning, -v\"" + parameters + u" saving to POSIX file \"" +
                                  unitsFromFileSystemBytes(home.path(file)) + u"\""),
                  "");
        return mac::test::textOf(home.path(file));
    };
    std::string const usual = say(u"", "usual.wav");
    EXPECT_TRUE(usual.starts_with("RIFF"));
    EXPECT_GT(say(u" speaking rate 80", "slow.wav").size(), usual.size());
    EXPECT_NE(say(u" pitch 90", "high.wav"), usual);
    EXPECT_NE(say(u" using \"de\" volume 0.2", "other.wav"), usual);
    EXPECT_FALSE(spokenOutcomeOf(u"say \"a\" using \"no such voice\" saving to POSIX file \"" +
                                 unitsFromFileSystemBytes(home.path("none.wav")) + u"\"")
                     .empty());
    EnvironmentVariable const programs("PATH", home.path("none"));
    EXPECT_TRUE(spokenOutcomeOf(u"say \"a\"").ends_with(" (-192)"));
}

} // namespace

} // namespace mac::applescript::test
