#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/desktop/session/Session.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/ChildProcess.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

// What scripts tell programs that are no part of the engine. This very process is one of them.

namespace mac::applescript::test {

namespace {

std::string outcomeOfRun(std::u16string_view source, RunOptions const& options = {}) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    if (!script) return "! " + utf8FromUnits(error.message);
    ScriptOutcome const outcome = script->run(options);
    if (!outcome.error) return utf8FromUnits(sourceForm(outcome.value));
    return "! " + utf8FromUnits(outcome.error->message) + " (" + std::to_string(outcome.error->number) + ")";
}

struct Received {
    std::string what{};
    AEDesc direct{};
};

// Answers an event with its own direct parameter, a number or an error, as the test wants.
OSErr answer(AppleEvent const* event, AppleEvent* reply, void* refcon) {
    Received& received = *static_cast<Received*>(refcon);
    NSAppleEventDescriptor const got = NSAppleEventDescriptor::descriptorWithAEDesc(*event);
    NSAppleEventDescriptor const direct = got.paramDescriptorForKeyword_(keyDirectObject);
    if (direct != nil) received.direct = *direct.aeDesc();
    if (received.what == "error") return -1728;
    NSAppleEventDescriptor const answered = NSAppleEventDescriptor::descriptorWithAEDesc(*reply);
    answered.setParamDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithInt32_(42), keyDirectObject);
    *reply = *answered.aeDesc();
    return noErr;
}

class ThisProgram : public testing::Test {
protected:
    void SetUp() override { AEInstallEventHandler(AEEventClass("core"), AEEventID("getd"), &answer, &m_received, NO); }
    void TearDown() override { AERemoveEventHandler(AEEventClass("core"), AEEventID("getd"), nullptr, NO); }

    ScriptHome const m_home{};
    Received m_received{};
};

TEST_F(ThisProgram, IsAskedByAnEventForWhatAScriptWantsOfIt) {
    EXPECT_EQ(outcomeOfRun(u"tell application \"applescript_tests\" to get «class docu» 1"), "42");
    EXPECT_EQ(m_received.direct.descriptorType, typeObjectSpecifier);
}

TEST_F(ThisProgram, IsNamedByWhatItComplainsOf) {
    m_received.what = "error";
    EXPECT_EQ(outcomeOfRun(u"tell application \"applescript_tests\" to get «class docu» 1"),
              "! applescript_tests got an error: Can’t get some object. (-1728)");
}

TEST_F(ThisProgram, RunsAndHasAName) {
    EXPECT_EQ(outcomeOfRun(u"application \"applescript_tests\" is running"), "true");
    EXPECT_EQ(outcomeOfRun(u"name of application \"applescript_tests\""), "\"applescript_tests\"");
    EXPECT_EQ(outcomeOfRun(u"tell application \"applescript_tests\" to exists «class docu» 1"),
              "! applescript_tests got an error: Some object doesn’t understand the “some event” message. (-1708)");
}

// A program whose word for what it was started with comes out of the pipe.
class InstalledPrograms : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(::mkfifo(m_pipe.c_str(), S_IRUSR | S_IWUSR), 0);
        m_home.folder().makeFolder("bin");
    }
    void makeProgram(std::string const& name) const {
        std::string const file =
            m_home.folder().makeFile("bin/" + name, "#!/bin/sh\necho \"" + name + " $*\" > '" + m_pipe + "'\n");
        ASSERT_EQ(::chmod(file.c_str(), S_IRWXU), 0);
    }
    std::string startedLine() const {
        std::ifstream pipe(m_pipe);
        std::string line;
        std::getline(pipe, line);
        return line;
    }

    ScriptHome const m_home{};
    std::string const m_pipe{m_home.path("pipe")};
};

TEST_F(InstalledPrograms, ShowThePanesOfTheSystemPreferences) {
    makeProgram("gnome-control-center");
    EXPECT_EQ(outcomeOfRun(u"tell application \"System Preferences\" to set current pane to pane \"Accounts\""),
              "pane id \"com.apple.preferences.users\" of application \"System Preferences\"");
    EXPECT_EQ(startedLine(), "gnome-control-center user-accounts");
    EXPECT_EQ(outcomeOfRun(u"tell application \"System Preferences\" to name of current pane"), "\"Accounts\"");
}

TEST_F(InstalledPrograms, ShowTheLoginItemsOfTheCurrentDesktop) {
    mac::test::EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "XFCE");
    makeProgram("gnome-control-center");
    makeProgram("xfce4-session-settings");
    EXPECT_EQ(outcomeOfRun(u"tell application \"System Preferences\" to set current pane to pane \"Accounts\""),
              "pane id \"com.apple.preferences.users\" of application \"System Preferences\"");
    EXPECT_EQ(startedLine(), "xfce4-session-settings ");
}

TEST_F(InstalledPrograms, AreThoseOfTheCurrentDesktopFirst) {
    mac::test::EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "MATE");
    makeProgram("gnome-control-center");
    makeProgram("mate-control-center");
    EXPECT_EQ(outcomeOfRun(u"tell application \"System Preferences\" to activate"), "");
    EXPECT_EQ(startedLine(), "mate-control-center ");
}

TEST_F(InstalledPrograms, DoNotLogOutWhereNoDesktopAsks) {
    mac::test::EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "");
    EXPECT_EQ(outcomeOfRun(u"tell application \"System Events\" to log out"),
              "! System Events got an error: No desktop runs that is known to ask before it logs out. (-10004)");
}

// Where the tests have a session bus, this process may answer events on it already, and would not look for another one.
struct OwnBusWhereThereIsNone {
    OwnBusWhereThereIsNone() {
        if (sessionBusAddress()) return;
        bus.emplace();
        address.emplace("DBUS_SESSION_BUS_ADDRESS", bus->address());
    }

    std::optional<mac::test::PrivateBus> bus;
    std::optional<mac::test::EnvironmentVariable> address;
};

// Another program, which never answers what scripts ask it for.
class HangingProgram : public testing::Test {
protected:
    // Under a name of its own, for it is looked for among all that run.
    std::string const m_name{"hanging-" + std::to_string(::getpid())};
    mac::test::TemporaryFolder const m_folder{};
    OwnBusWhereThereIsNone const m_bus{};
    mac::test::ChildProcess m_program{{copiedProgram()}};

    void SetUp() override { ASSERT_EQ(m_program.readLine(), "ready"); }

    std::string copiedProgram() const {
        std::string const copy = m_folder.path(m_name);
        std::filesystem::copy_file(EVENT_PEER, copy);
        return copy;
    }
    std::u16string hang() const {
        return u"tell application \"" + unitsFromFileSystemBytes(m_name) + u"\" to get «class docu» 1";
    }
    std::string timedOut() const {
        return "! " + m_name + " got an error: " + utf8FromUnits(messageOfNumber(-1712)) + " (-1712)";
    }
};

TEST_F(HangingProgram, IsWaitedForAsLongAsTheScriptSays) {
    ASSERT_EQ(outcomeOfRun(u"with timeout of 0.1 seconds\n" + hang() + u"\nend timeout"), timedOut());
    EXPECT_EQ(outcomeOfRun(u"on wish()\n" + hang() + u"\nend wish\nwith timeout of 0.1 seconds\nwish()\nend timeout"),
              timedOut());
    EXPECT_EQ(
        outcomeOfRun(u"try\nwith timeout of 0.1 seconds\n" + hang() + u"\nend timeout\non error number n\nn\nend try"),
        "-1712");
}

TEST_F(HangingProgram, KeepsNoScriptFromEnding) {
    std::u16string const source = u"try\n" + hang() + u"\nend try";
    EXPECT_EQ(outcomeOfRun(source, {.seconds = 0.1}), "! " + utf8FromUnits(messageOfNumber(-1712)) + " (-1712)");
    std::atomic<bool> cancelled{false};
    // The program says when it was asked.
    std::thread other([&] {
        m_program.readLine();
        cancelled = true;
    });
    EXPECT_EQ(outcomeOfRun(source, {.cancelled = &cancelled}), "! " + utf8FromUnits(messageOfNumber(-128)) + " (-128)");
    other.join();
}

TEST_F(InstalledPrograms, AreStartedByTheirNames) {
    makeProgram("sketch");
    m_home.folder().makeFile(".local/share/applications/org.example.Sketch.desktop",
                             "[Desktop Entry]\nType=Application\nName=Sketch Pad\nExec=sketch --new %U\n");
    EXPECT_EQ(outcomeOfRun(u"application \"Sketch Pad\" is running"), "false");
    EXPECT_EQ(outcomeOfRun(u"tell application \"sketch pad\" to activate"), "");
    EXPECT_EQ(startedLine(), "sketch --new");
    EXPECT_EQ(outcomeOfRun(u"id of application \"Sketch Pad\""), "\"org.example.Sketch\"");
    EXPECT_EQ(outcomeOfRun(u"name of application id \"org.example.sketch\""), "\"Sketch Pad\"");
}

TEST_F(InstalledPrograms, ThatDoNotRunAreNotStartedByAQuestion) {
    makeProgram("sketch");
    m_home.folder().makeFile(".local/share/applications/sketch.desktop",
                             "[Desktop Entry]\nType=Application\nName=Sketch\nExec=sketch\n");
    EXPECT_EQ(outcomeOfRun(u"tell application \"Sketch\" to quit"), "");
    EXPECT_EQ(outcomeOfRun(u"tell application \"Sketch\" to get «class docu» 1"),
              "! Sketch got an error: Application isn’t running. (-600)");
    EXPECT_EQ(outcomeOfRun(u"application \"Sketch\" is running"), "false");
}

TEST_F(InstalledPrograms, ThatTheUserHidCannotBeGot) {
    makeProgram("sketch");
    mac::test::EnvironmentVariable const systemData("XDG_DATA_DIRS", m_home.folder().path("system"));
    m_home.folder().makeFile("system/applications/sketch.desktop",
                             "[Desktop Entry]\nType=Application\nName=Sketch\nExec=sketch\n");
    EXPECT_EQ(outcomeOfRun(u"application id \"sketch\" is running"), "false");
    m_home.folder().makeFile(".local/share/applications/sketch.desktop", "[Desktop Entry]\nHidden=true\n");
    EXPECT_EQ(outcomeOfRun(u"application id \"sketch\" is running"), "! Can’t get application id \"sketch\". (-1728)");
}

TEST_F(InstalledPrograms, ThatNobodyKnowsCannotBeGot) {
    EXPECT_EQ(outcomeOfRun(u"tell application id \"org.example.none\" to activate"),
              "! Can’t get application id \"org.example.none\". (-1728)");
    EXPECT_EQ(outcomeOfRun(u"application id \"org.example.none\" is running"),
              "! Can’t get application id \"org.example.none\". (-1728)");
}

} // namespace

} // namespace mac::applescript::test
