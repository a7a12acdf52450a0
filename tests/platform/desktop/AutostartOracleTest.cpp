#include "platform/desktop/AutostartChanges.h"
#include "platform/desktop/StartedItem.h"
#include "tests/platform/desktop/AutostartFolders.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/CommandOutput.h"
#include "tests/support/Spawn.h"
#include <algorithm>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

// Our entries as other programs read them.

namespace mac::test {

namespace {

constexpr char Generator[] = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";

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
