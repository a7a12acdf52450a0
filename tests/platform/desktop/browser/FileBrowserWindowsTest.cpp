#include "tests/platform/desktop/Desktop.h"
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {
namespace {

using Lines = std::vector<std::string>;

class FileBrowserWindows : public testing::Test {
protected:
    void installService(std::string const& mode) const {
        m_desktop.install(m_desktop.fake("open") + " %U");
        m_desktop.installService(m_desktop.fake(mode));
    }

    Desktop const m_desktop{};
    FileBrowserSession const m_browser{};
    std::string const m_file = m_desktop.folder.makeFile("a b/file", "");
    std::string const m_uri = "file://" + m_desktop.folder.path("a%20b");
};

TEST_F(FileBrowserWindows, AreAskedForThroughTheBus) {
    installService("serve");
    EXPECT_TRUE(m_browser.revealItems({m_file}).isDone());
    EXPECT_TRUE(m_browser.openFolders({m_desktop.folder.path("a b")}).isDone());
    EXPECT_TRUE(m_browser.showInformation({m_file, m_desktop.folder.path()}).isDone());
    EXPECT_TRUE(m_browser.openItem(m_desktop.folder.path("a b")).isDone());
    EXPECT_EQ(m_desktop.lines(), (Lines{"started serve", "ShowItems " + m_uri + "/file", "ShowFolders " + m_uri,
                                        "ShowItemProperties " + m_uri + "/file file://" + m_desktop.folder.path(),
                                        "ShowFolders " + m_uri}));
}

TEST_F(FileBrowserWindows, ShowNamesOfAnyBytes) {
    installService("serve");
    std::string const file = m_desktop.folder.makeFile("\xE9t\xC3\xA9 %41?#;&\n", "");
    EXPECT_TRUE(m_browser.revealItems({file}).isDone());
    EXPECT_EQ(m_desktop.lastLine(), "ShowItems file://" + m_desktop.folder.path("%E9t%C3%A9%20%2541%3F%23%3B%26%0A"));
}

TEST_F(FileBrowserWindows, ShowLinksThemselves) {
    installService("serve");
    std::string const link = m_desktop.folder.path("link");
    ASSERT_EQ(::symlink("nowhere", link.c_str()), 0);
    EXPECT_TRUE(m_browser.revealItems({link}).isDone());
    EXPECT_EQ(kindOf(m_browser.openItem(link)), DesktopProblem::Kind::NotThere);
    EXPECT_EQ(m_desktop.lastLine(), "ShowItems file://" + link);
}

TEST_F(FileBrowserWindows, AreNotOpenedForMissingItems) {
    installService("serve");
    EXPECT_EQ(kindOf(m_browser.revealItems({})), DesktopProblem::Kind::NotThere);
    EXPECT_EQ(kindOf(m_browser.revealItems({m_file, m_file + " 2"})), DesktopProblem::Kind::NotThere);
    EXPECT_EQ(kindOf(m_browser.openFolders({""})), DesktopProblem::Kind::NotThere);
    EXPECT_EQ(kindOf(m_browser.showInformation({"relative"})), DesktopProblem::Kind::NotThere);
    EXPECT_EQ(kindOf(m_browser.openItem("")), DesktopProblem::Kind::NotThere);
    EXPECT_TRUE(m_desktop.lines().empty()) << "nothing was started";
}

TEST_F(FileBrowserWindows, NeedABrowser) {
    DesktopOutcome const outcome = m_browser.revealItems({m_file});
    EXPECT_EQ(kindOf(outcome), DesktopProblem::Kind::NoApplication);
    EXPECT_FALSE(textOf(outcome).empty());
    EXPECT_EQ(kindOf(m_browser.openItem(m_file)), DesktopProblem::Kind::NoApplication);
}

TEST_F(FileBrowserWindows, NeedABus) {
    installService("serve");
    EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_desktop.folder.path("none"));
    EXPECT_EQ(kindOf(m_browser.revealItems({m_file})), DesktopProblem::Kind::NoBus);
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FileBrowserWindows, NeedADisplay) {
    installService("serve");
    m_desktop.folder.makeFile("data/applications/editor.desktop",
                              "[Desktop Entry]\nName=Editor\nExec=" + m_desktop.fake("open") + " %f\n");
    EnvironmentVariable const none("DISPLAY", "");
    EXPECT_EQ(kindOf(m_browser.revealItems({m_file})), DesktopProblem::Kind::NoDisplay);
    EXPECT_EQ(kindOf(m_browser.openItem(m_desktop.folder.makeFile("text.txt", "x"))), DesktopProblem::Kind::NoDisplay);
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FileBrowserWindows, AreShownByTheProgramThatOffersTheService) {
    ChildProcess const other({fakeFileBrowser(), "serve", m_desktop.folder.path("other log")});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    installService("ends");
    EXPECT_TRUE(m_browser.revealItems({m_file}).isDone());
    EXPECT_TRUE(m_desktop.lines().empty()) << "the default one was not started";
}

TEST_F(FileBrowserWindows, AreAskedForAgainWhereTheBrowserEndsMeanwhile) {
    installService("serve");
    ChildProcess const leaving({fakeFileBrowser(), "leaves", m_desktop.log()});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    EXPECT_TRUE(m_browser.revealItems({m_file}).isDone());
    std::string const asked = "ShowItems " + m_uri + "/file";
    EXPECT_EQ(m_desktop.lines(), (Lines{"started leaves", asked, "started serve", asked}));
}

TEST_F(FileBrowserWindows, AreNotAskedForAThirdTime) {
    installService("leaves");
    EXPECT_EQ(kindOf(m_browser.revealItems({m_file})), DesktopProblem::Kind::NoAnswer);
    std::string const asked = "ShowItems " + m_uri + "/file";
    EXPECT_EQ(m_desktop.lines(), (Lines{"started leaves", asked, "started leaves", asked}));
}

TEST_F(FileBrowserWindows, WaitForABrowserThatStartsItselfOnceMore) {
    installService("starts");
    EXPECT_TRUE(m_browser.revealItems({m_file}).isDone());
    EXPECT_EQ(m_desktop.lines(), (Lines{"started starts", "started serve", "ShowItems " + m_uri + "/file"}));
}

TEST_F(FileBrowserWindows, WaitABoundedTimeForABrowserToStart) {
    FileBrowserSession const impatient(ShortTimeouts);
    installService("nameless");
    EXPECT_EQ(kindOf(impatient.revealItems({m_file})), DesktopProblem::Kind::NoAnswer);
    installService("ends");
    EXPECT_EQ(kindOf(impatient.revealItems({m_file})), DesktopProblem::Kind::NoAnswer);
}

TEST_F(FileBrowserWindows, WaitABoundedTimeForAnAnswer) {
    installService("silent");
    ChildProcess const silent({fakeFileBrowser(), "silent", m_desktop.log()});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    FileBrowserSession const impatient(ShortTimeouts);
    EXPECT_EQ(kindOf(impatient.revealItems({m_file})), DesktopProblem::Kind::NoAnswer);
}

TEST_F(FileBrowserWindows, SayWhenTheBrowserCannot) {
    installService("refuse");
    DesktopOutcome const outcome = m_browser.showInformation({m_file});
    EXPECT_EQ(kindOf(outcome), DesktopProblem::Kind::Refused);
    EXPECT_NE(textOf(outcome).find("It has no hands"), std::string::npos) << textOf(outcome);
}

TEST_F(FileBrowserWindows, AreStartedWithTheFolderWhereTheBrowserIsNoService) {
    m_desktop.install(m_desktop.fake("open") + " --window %f");
    EXPECT_TRUE(m_browser.revealItems({m_file, m_desktop.folder.makeFile("a b/other", "")}).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open --window " + m_desktop.folder.path("a b")});
    EXPECT_TRUE(m_browser.openFolders({m_desktop.folder.path("home")}).isDone());
    EXPECT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_EQ(m_desktop.lastLine(), "started open --window " + m_desktop.folder.path("home"));
    EXPECT_EQ(kindOf(m_browser.showInformation({m_file})), DesktopProblem::Kind::Refused);
}

TEST_F(FileBrowserWindows, SayWhenTheBrowserIsNoProgram) {
    m_desktop.install(m_desktop.folder.makeFile("program", "neither a script nor a program"));
    ASSERT_EQ(::chmod(m_desktop.folder.path("program").c_str(), 0755), 0);
    DesktopOutcome const outcome = m_browser.revealItems({m_file});
    ASSERT_EQ(kindOf(outcome), DesktopProblem::Kind::NoAnswer);
    ASSERT_TRUE(outcome.problem().cause.has_value());
    EXPECT_EQ(outcome.problem().cause->code, ENOEXEC);
}

// What the types of files are made of, as far as the tests need it.
class OpenedItem : public FileBrowserWindows {
protected:
    OpenedItem() { m_desktop.install(m_desktop.fake("open") + " %U"); }

    void installEditor(std::string const& arguments, std::string const& rest = "") const {
        m_desktop.folder.makeFile("data/applications/editor.desktop",
                                  "[Desktop Entry]\nName=The Editor\nExec=" + m_desktop.fake("open") + arguments +
                                      "\n" + rest);
    }
    std::string const m_text = m_desktop.folder.makeFile("a letter.txt", "Dear Anna");
};

TEST_F(OpenedItem, GoesToTheDefaultApplicationOfItsType) {
    installEditor(" %f");
    EXPECT_TRUE(m_browser.openItem(m_text).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + m_text});
    // What a type is a kind of counts as well.
    std::string const source = m_desktop.folder.makeFile("tool.py", "print(1)\n");
    EXPECT_TRUE(m_browser.openItem(source).isDone());
    EXPECT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_EQ(m_desktop.lastLine(), "started open " + source);
}

TEST_F(OpenedItem, IsKnownByTheContentsALinkLeadsTo) {
    installEditor(" %f");
    std::string const link = m_desktop.folder.path("letter");
    ASSERT_EQ(::symlink(m_desktop.folder.makeFile("page", "Dear Anna").c_str(), link.c_str()), 0);
    EXPECT_TRUE(m_browser.openItem(link).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + link});
    // Never opened: nobody writes to it.
    ASSERT_EQ(::mkfifo(m_desktop.folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(kindOf(m_browser.openItem(m_desktop.folder.path("pipe"))), DesktopProblem::Kind::NoApplication);
}

TEST_F(OpenedItem, IsOneArgumentWhateverItsName) {
    installEditor(" --name=%c --uri=%u %% %i");
    std::string const text = m_desktop.folder.makeFile("$(touch x) \"'.txt", "x");
    EXPECT_TRUE(m_browser.openItem(text).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open --name=The Editor --uri=file://" +
                                        m_desktop.folder.path("%24%28touch%20x%29%20%22%27.txt") + " %"});
    installEditor("");
    EXPECT_TRUE(m_browser.openItem(text).isDone());
    EXPECT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_EQ(m_desktop.lastLine(), "started open " + text);
}

TEST_F(OpenedItem, IsOpenedInATerminalByAnApplicationForTerminals) {
    installEditor(" %f", "Terminal=true\n");
    EnvironmentVariable const path("PATH", m_desktop.folder.path("bin"));
    EXPECT_EQ(kindOf(m_browser.openItem(m_text)), DesktopProblem::Kind::Refused) << "there is no terminal";
    std::string const terminal =
        m_desktop.folder.makeFile("bin/x-terminal-emulator", "#!/bin/sh\nshift\nexec \"$@\"\n");
    ASSERT_EQ(::chmod(terminal.c_str(), 0755), 0);
    EXPECT_TRUE(m_browser.openItem(m_text).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + m_text});
}

} // namespace
} // namespace mac::test
