#include "platform/desktop/entries/StartedItem.h"
#include "platform/desktop/HexText.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <ostream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace mac::test {

namespace {

struct CommandLine {
    char const* line;
    // Both without the folder of the test.
    char const* item;
};

void PrintTo(CommandLine const& command, std::ostream* stream) { *stream << command.line; }

// BASE in a command line is a folder with a bundle, a program in no bundle and links to the bundle's program.
class StartedItem : public testing::TestWithParam<CommandLine> {
protected:
    StartedItem() {
        makeProgram("My App.app/Contents/Linux/my app");
        makeProgram("bin/tool");
        m_folder.makeFile("script.py", "");
        m_folder.makeFolder("links");
        link("../My App.app/Contents/Linux/my app", "links/mine");
        link("../My App.app/Contents/Linux/my app", "bin/myapp");
        link("My App.app", "other");
    }

    std::string itemOf(std::string line) const {
        for (std::size_t place = 0; (place = line.find("BASE", place)) != std::string::npos;)
            line.replace(place, 4, m_folder.path());
        std::string item = itemStartedBy(line);
        std::string const base = m_folder.path() + "/";
        return item.starts_with(base) ? item.substr(base.size()) : item;
    }

    TemporaryFolder const m_folder{};

private:
    void makeProgram(char const* relative) const {
        EXPECT_EQ(::chmod(m_folder.makeFile(relative, "#!/bin/sh\n").c_str(), 0755), 0);
    }
    void link(char const* target, char const* relative) const {
        EXPECT_EQ(::symlink(target, m_folder.path(relative).c_str()), 0);
    }

    EnvironmentVariable const m_path{"PATH", m_folder.path("bin") + ":/usr/bin:/bin"};
    EnvironmentVariable const m_home{"HOME", m_folder.path()};
};

} // namespace

TEST_P(StartedItem, IsTheBundleOrProgram) { EXPECT_EQ(itemOf(GetParam().line), GetParam().item); }

INSTANTIATE_TEST_SUITE_P(Quoting, StartedItem,
                         testing::Values(CommandLine{R"("BASE/My App.app/Contents/Linux/my app")", "My App.app"},
                                         CommandLine{R"("BASE/My App.app/Contents/Linux/my app" --hidden %U)",
                                                     "My App.app"},
                                         CommandLine{R"(BASE/My\ App.app/Contents/Linux/my\ app)", "My App.app"},
                                         CommandLine{R"('BASE/My App.app/Contents/Linux/my app')", "My App.app"},
                                         CommandLine{R"(BASE/"My App.app"/Contents/Linux/'my app')", "My App.app"},
                                         CommandLine{R"("BASE/It's.app/Contents/x")", "It's.app"},
                                         CommandLine{R"(BASE/It's.app/Contents/x)", "It's.app"},
                                         CommandLine{R"("BASE/A\"\$\`\\b.app/Contents/x")", R"(A"$`\b.app)"},
                                         CommandLine{R"("BASE/100%%.app/Contents/x" %f)", "100%.app"},
                                         CommandLine{R"("BASE/UPPER.APP/Contents/x")", "UPPER.APP"}));

INSTANTIATE_TEST_SUITE_P(
    Starters, StartedItem,
    testing::Values(CommandLine{R"(env A=b "BASE/My App.app/Contents/Linux/my app")", "My App.app"},
                    CommandLine{R"(env -u HOME -i A=b LANG=C "BASE/My App.app/Contents/Linux/my app" x)", "My App.app"},
                    CommandLine{R"(env -S "A=b 'BASE/My App.app/Contents/Linux/my app'")", "My App.app"},
                    CommandLine{R"(/usr/bin/nice -n 5 setsid "BASE/My App.app/Contents/Linux/my app")", "My App.app"},
                    CommandLine{R"(sh -c 'exec "BASE/My App.app/Contents/Linux/my app"')", "My App.app"},
                    CommandLine{R"(sh -c "sleep 5; A=1 'BASE/My App.app/Contents/Linux/my app' &")", "My App.app"},
                    CommandLine{R"(bash -lc "cd 'BASE/My App.app/Contents/Linux' && './my app'")", "My App.app"},
                    CommandLine{R"(sh -c '"$HOME/My App.app/Contents/Linux/my app"')", "My App.app"},
                    CommandLine{R"(sh -c '~/My\ App.app/Contents/Linux/my\ app')", "My App.app"},
                    CommandLine{R"(sh "BASE/My App.app/Contents/start.sh")", "My App.app"},
                    CommandLine{R"(python3 -u "BASE/My App.app/Contents/Linux/my app")", "My App.app"},
                    CommandLine{R"(java -jar "BASE/My App.app/Contents/my.jar")", "My App.app"},
                    CommandLine{R"(BASE/links/mine)", "My App.app"}, CommandLine{R"(myapp --quiet)", "My App.app"},
                    CommandLine{R"(env A=b myapp)", "My App.app"},
                    CommandLine{R"(python3 BASE/script.py)", "script.py"}, CommandLine{R"(env A=b tool)", "bin/tool"},
                    CommandLine{R"(sh -c 'tool; true')", "bin/tool"}));

INSTANTIATE_TEST_SUITE_P(
    OtherPrograms, StartedItem,
    testing::Values(CommandLine{R"(BASE/bin/tool)", "bin/tool"}, CommandLine{R"(tool)", "bin/tool"},
                    // A document in a bundle, not its program.
                    CommandLine{R"(tool "BASE/My App.app/Contents/Info.plist")", "bin/tool"},
                    CommandLine{R"(no-such-program -x)", "no-such-program"},
                    CommandLine{R"(BASE/gone/program)", "gone/program"},
                    CommandLine{R"("BASE/a/Inner.app/b/Outer.app/../../x")", "a/Inner.app"},
                    CommandLine{R"("BASE/A.app/Contents/B.app/Contents/b")", "A.app/Contents/B.app"},
                    CommandLine{R"("BASE/.app/x")", ".app/x"}, CommandLine{"", ""}, CommandLine{" \t ", ""},
                    CommandLine{R"("BASE/My App.app)", ""}, CommandLine{R"(env)", "/usr/bin/env"}));

TEST_F(StartedItem, OfOurLauncherIsWhatItsDigitsName) {
    std::string const bundle = m_folder.path("My App.app");
    std::string const program = bundle + "/Contents/Linux/my app";
    for (std::string const& path : {bundle, program})
        EXPECT_EQ(itemStartedBy("\"" + loginLauncherPath() + "\" " + hexTextOf(path)), bundle);
    EXPECT_EQ(itemStartedBy("framekeeper-login 2f6"), "framekeeper-login");
}

TEST(LoginLauncher, TellsWhatItCannotStart) {
    TemporaryFolder const folder;
    std::string const locked = folder.makeFile("locked", "");
    for (auto const& [path, status] : {std::pair(folder.path("none"), 127), std::pair(locked, 126)}) {
        ChildProcess shell({"/bin/sh", "-c", "exec \"$0\" \"$1\" 2>&1", loginLauncherPath(), hexTextOf(path)});
        EXPECT_NE(shell.readLine().find(path), std::string::npos);
        EXPECT_EQ(shell.wait(), status) << path;
    }
}

// A tree that is installed below another prefix than it was configured for.
TEST(LoginLauncher, IsFoundBelowThePrefixOfTheProgram) {
    TemporaryFolder const prefix;
    std::string const command = prefix.makeFile("bin/framekeeper-cli", "");
    std::string const bundled = prefix.makeFile("lib/framekeeper/Framekeeper.app/Contents/Linux/framekeeper", "");
    EXPECT_EQ(loginLauncherBeside(command), "");
    std::string const launcher = prefix.makeFile(LAUNCHER_BELOW_PREFIX, "");
    EXPECT_EQ(loginLauncherBeside(command), "") << "it cannot be started";
    ASSERT_EQ(::chmod(launcher.c_str(), 0755), 0);
    EXPECT_EQ(loginLauncherBeside(command), launcher);
    EXPECT_EQ(loginLauncherBeside(bundled), launcher);
    EXPECT_EQ(loginLauncherBeside(prefix.path("bin/none")), "");
    if (!OrdinaryUser::isAnother()) return;
    OrdinaryUser::own(launcher);
    EXPECT_EQ(loginLauncherBeside(command), "") << "another user has put it there";
}

TEST_F(StartedItem, LooksThroughNoMoreProgramsThanAreReal) {
    std::string line;
    for (int index = 0; index < 100'000; ++index)
        line += "env ";
    EXPECT_NE(itemOf(line + "myapp"), "My App.app");
    std::string text;
    for (int index = 0; index < 100'000; ++index)
        text += "true;";
    EXPECT_NE(itemOf("sh -c '" + text + "myapp'"), "My App.app");
}

TEST(HexTextTest, IsReadBackAndOtherTextIsNot) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all.push_back(static_cast<char>(byte));
    EXPECT_EQ(bytesFromHexText(hexTextOf(all)), all);
    EXPECT_EQ(bytesFromHexText("4A4b"), "JK");
    for (char const* const text : {"4", "4g", "-1", "0x", " 4"})
        EXPECT_EQ(bytesFromHexText(text), std::nullopt) << text;
}

} // namespace mac::test
