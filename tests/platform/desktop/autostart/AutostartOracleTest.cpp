#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/desktop/entries/StartedItem.h"
#include "platform/desktop/session/Session.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/platform/desktop/VirtualSession.h"
#include "tests/platform/desktop/autostart/AutostartFolders.h"
#include "tests/support/Commands.h"
#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

// Our entries as other programs read them.

namespace mac::test {

namespace {

constexpr char Generator[] = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";

constexpr char XfceSettings[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-session" version="1.0">
  <property name="general" type="empty">
    <property name="FailsafeSessionName" type="string" value="Failsafe"/>
    <property name="PromptOnLogout" type="bool" value="true"/>
  </property>
  <property name="sessions" type="empty">
    <property name="Failsafe" type="empty">
      <property name="IsFailsafe" type="bool" value="true"/>
      <property name="Count" type="int" value="1"/>
      <property name="Client0_Command" type="array"><value type="string" value="true"/></property>
      <property name="Client0_PerScreen" type="bool" value="false"/>
    </property>
  </property>
  <property name="startup" type="empty">
    <property name="ssh-agent" type="empty"><property name="enabled" type="bool" value="false"/></property>
    <property name="gpg-agent" type="empty"><property name="enabled" type="bool" value="false"/></property>
  </property>
</channel>
)";

// One copy of an application for each printable character of ASCII, in a folder named by it, and the entry of each. A
// copy writes its path into a file.
class AutostartOracle : public AutostartFolders {
protected:
    void SetUp() override {
        m_folder.makeFile("started", "");
        for (char character = ' '; character <= '~'; ++character) {
            if (character == '/') continue;
            std::string const name = std::string("a") + character + "b" + character;
            std::string const bundle = name + "/Mirror Frame.app";
            std::string const program =
                m_folder.makeFile(bundle + "/Contents/Linux/Mirror Frame",
                                  "#!/bin/sh\nprintf '%s\\n' \"$0\" >> " + m_folder.path("started") + "\n");
            ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
            ASSERT_TRUE(addAutostart({.program = program, .item = m_folder.path(bundle), .note = "00"}).hasValue());
            m_programs.insert(program);
        }
    }

    static bool isInstalled(char const* program) { return ::access(program, X_OK) == 0; }
    std::set<std::string> started() const {
        std::ifstream stream(m_folder.path("started"));
        std::set<std::string> programs;
        for (std::string line; std::getline(stream, line);)
            programs.insert(line);
        return programs;
    }
    void expectAllStarted() const {
        waitUntil([&] { return started().size() >= m_programs.size(); });
        EXPECT_EQ(started(), m_programs);
    }

    std::set<std::string> m_programs{};
};

// A session manager's socket in this folder is named by its process number. What another process of that number has
// left there, in another process namespace or before the last start of the computer, only its own user can replace: so
// the command runs with an empty folder of its own, where mounting is allowed.
std::vector<std::string> withOwnSessionSockets(std::vector<std::string> const& command) {
    constexpr char script[] = "mkdir -p -m 1777 /tmp/.ICE-unix\n"
                              "mount -t tmpfs -o mode=1777 sockets /tmp/.ICE-unix\n"
                              "exec \"$@\"";
    std::vector<std::string> words;
    if (ChildProcess({"/usr/bin/unshare", "--mount", "true"}).wait() == 0)
        words = {"/usr/bin/unshare", "--mount", "/bin/sh", "-c", script, "sh"};
    words.insert(words.end(), command.begin(), command.end());
    return words;
}

// The words of ExecStart in a unit: those in double quotes, and those between blanks.
std::vector<std::string> wordsOfUnit(std::string const& unit) {
    std::size_t const begin = unit.find("ExecStart=:") + std::string("ExecStart=:").size();
    std::string const line = unit.substr(begin, unit.find('\n', begin) - begin);
    std::vector<std::string> words{""};
    bool isQuoted = false;
    for (char const character : line) {
        if (character == '"')
            isQuoted = !isQuoted;
        else if (character == ' ' && !isQuoted)
            words.emplace_back();
        else
            words.back().push_back(character);
    }
    return words;
}

} // namespace

TEST_F(AutostartOracle, TheValidatorOfDesktopEntriesAcceptsOurs) {
    if (!isInstalled("/usr/bin/desktop-file-validate")) GTEST_SKIP() << "desktop-file-validate is not installed";
    addOfSystem("masked.desktop", entry("/bin/true"));
    std::vector<AutostartItem> const all = autostartItems().items;
    auto const masked = std::ranges::find(all, "masked.desktop", &AutostartItem::fileName);
    ASSERT_NE(masked, all.end());
    ASSERT_TRUE(removeAutostart(*masked).hasValue());
    std::vector<std::string> command{"/usr/bin/desktop-file-validate", "--no-hints"};
    for (std::string const& name : namesOfUser())
        command.push_back(pathOfUser(name));
    ASSERT_EQ(command.size(), m_programs.size() + 3);
    EXPECT_EQ(outputOf(command), "");
}

TEST_F(AutostartOracle, DexStartsTheRightPrograms) {
    if (!isInstalled("/usr/bin/dex")) GTEST_SKIP() << "dex is not installed";
    outputOf({"/usr/bin/dex", "-a", "-e", "XFCE"});
    expectAllStarted();
}

// The library that LXQt's session reads its entries with. Its tool starts an entry as the application of a URL's
// scheme.
TEST_F(AutostartOracle, TheLibraryOfLXQtStartsTheRightPrograms) {
    if (!isInstalled("/usr/bin/qtxdg-mat")) GTEST_SKIP() << "qtxdg-mat is not installed";
    EnvironmentVariable const platform("QT_QPA_PLATFORM", "offscreen");
    std::string defaults = "[Default Applications]\n";
    std::vector<std::string> schemes;
    for (std::string const& name : namesOfUser()) {
        schemes.push_back("entry" + std::to_string(schemes.size()));
        m_folder.makeFile("data/applications/" + schemes.back() + ".desktop", contentsOf(pathOfUser(name)));
        defaults += "x-scheme-handler/" + schemes.back() + "=" + schemes.back() + ".desktop\n";
    }
    ASSERT_EQ(schemes.size(), m_programs.size());
    m_folder.makeFile("config/mimeapps.list", defaults);
    for (std::string const& scheme : schemes)
        outputOf({"/usr/bin/qtxdg-mat", "open", scheme + ":start"});
    expectAllStarted();
}

// The session manager itself, on a display and a bus of its own. What it would start besides the entries is one program
// that ends at once; its settings are read by the service that it brings along.
TEST_F(AutostartOracle, XfceStartsTheRightProgramsAndAsksBeforeItLogsOut) {
    constexpr char manager[] = "/usr/bin/xfce4-session";
    if (!isInstalled(manager)) GTEST_SKIP() << "xfce4-session is not installed";
    if (std::optional<std::string> const obstacle = VirtualSession::obstacle()) GTEST_SKIP() << *obstacle;
    m_folder.makeFile("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-session.xml", XfceSettings);
    std::string const runtime = m_folder.makeFolder("run");
    ASSERT_EQ(::chmod(runtime.c_str(), 0700), 0);
    EnvironmentVariable const home("HOME", m_folder.makeFolder("home"));
    EnvironmentVariable const cache("XDG_CACHE_HOME", m_folder.makeFolder("cache"));
    EnvironmentVariable const services("XDG_DATA_DIRS", "/usr/share");
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "XFCE");
    EnvironmentVariable const otherSession("SESSION_MANAGER", std::nullopt);
    VirtualSession const session(runtime);
    EXPECT_EQ(obstacleToLoggingOut(), "The desktop's session manager does not run");
    ChildProcess const running(endingWithThisProcess(withOwnSessionSockets({manager, "--disable-tcp"}), "TERM"));
    expectAllStarted();
    ASSERT_TRUE(waitUntil([] { return !obstacleToLoggingOut(); }));
    // The session manager refuses until it has started everything.
    EXPECT_TRUE(waitUntil([] { return askToLogOut(std::chrono::minutes(1)).isDone(); }));
    // The question, beside the window that each program has without showing it.
    EXPECT_TRUE(waitUntil([] { return VirtualSession::countWindows("xfce4-session") >= 2; }))
        << outputOf({"xwininfo", "-root", "-tree"});
    EXPECT_EQ(obstacleToLoggingOut(), std::nullopt) << "the session goes on meanwhile";
}

TEST_F(AutostartOracle, SystemdStartsTheRightPrograms) {
    if (!isInstalled(Generator)) GTEST_SKIP() << "systemd-xdg-autostart-generator is not installed";
    std::string const units = m_folder.makeFolder("units");
    outputOf({Generator, m_folder.makeFolder("normal"), m_folder.makeFolder("early"), units});
    std::vector<std::string> verify{"/usr/bin/systemd-analyze", "--user", "--man=no", "verify"};
    for (auto const& file : std::filesystem::directory_iterator(units)) {
        if (!file.is_regular_file()) continue;
        verify.push_back(file.path());
        outputOf(wordsOfUnit(contentsOf(file.path())));
    }
    EXPECT_EQ(verify.size(), m_programs.size() + 4);
    expectAllStarted();
    if (!isInstalled("/usr/bin/systemd-analyze")) GTEST_SKIP() << "systemd-analyze is not installed";
    EnvironmentVariable const runtime("XDG_RUNTIME_DIR", m_folder.makeFolder("run"));
    EXPECT_EQ(outputOf(verify), "");
}

TEST_F(AutostartOracle, TheLauncherStartsTheProgramThatABundleNamesByThen) {
    std::string const bundle = m_folder.path("later/Mirror Frame.app");
    Result<std::string> const name = addAutostart({.item = bundle});
    ASSERT_TRUE(name.hasValue());
    std::string const program =
        m_folder.makeFile("later/Mirror Frame.app/Contents/Linux/later",
                          "#!/bin/sh\nprintf '%s\\n' \"$0\" >> " + m_folder.path("started") + "\n");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    m_folder.makeFile("later/Mirror Frame.app/Contents/Info.plist",
                      "<plist><dict><key>CFBundleExecutable</key><string>later</string></dict></plist>");
    std::string const text = contentsOf(pathOfUser(name.value()));
    std::size_t const exec = text.find("Exec=") + 5;
    outputOf({"/bin/sh", "-c", text.substr(exec, text.find('\n', exec) - exec)});
    EXPECT_EQ(started(), std::set<std::string>{program});
}

} // namespace mac::test
