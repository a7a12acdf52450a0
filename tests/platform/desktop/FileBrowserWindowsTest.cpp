#include "platform/desktop/FileBrowserWindows.h"
#include "tests/platform/desktop/Desktop.h"
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
    std::string const m_file = m_desktop.folder.makeFile("a b/file", "");
    std::string const m_uri = "file://" + m_desktop.folder.path("a%20b");
};

TEST_F(FileBrowserWindows, AreAskedForThroughTheBus) {
    installService("serve");
    EXPECT_TRUE(revealItems({m_file}).isDone());
    EXPECT_TRUE(openFolders({m_desktop.folder.path("a b")}).isDone());
    EXPECT_TRUE(showInformation({m_file, m_desktop.folder.path()}).isDone());
    EXPECT_TRUE(openItem(m_desktop.folder.path("a b")).isDone());
    EXPECT_EQ(m_desktop.lines(), (Lines{"started serve", "ShowItems " + m_uri + "/file", "ShowFolders " + m_uri,
                                        "ShowItemProperties " + m_uri + "/file file://" + m_desktop.folder.path(),
                                        "ShowFolders " + m_uri}));
}

TEST_F(FileBrowserWindows, ShowNamesOfAnyBytes) {
    installService("serve");
    std::string const file = m_desktop.folder.makeFile("\xE9t\xC3\xA9 %41?#;&\n", "");
    EXPECT_TRUE(revealItems({file}).isDone());
    EXPECT_EQ(m_desktop.lastLine(), "ShowItems file://" + m_desktop.folder.path("%E9t%C3%A9%20%2541%3F%23%3B%26%0A"));
}

TEST_F(FileBrowserWindows, ShowLinksThemselves) {
    installService("serve");
    std::string const link = m_desktop.folder.path("link");
    ASSERT_EQ(::symlink("nowhere", link.c_str()), 0);
    EXPECT_TRUE(revealItems({link}).isDone());
    EXPECT_EQ(openItem(link).problem, FinderProblem::NotThere);
    EXPECT_EQ(m_desktop.lastLine(), "ShowItems file://" + link);
}

TEST_F(FileBrowserWindows, AreNoneOfWhatIsNotThere) {
    installService("serve");
    EXPECT_EQ(revealItems({}).problem, FinderProblem::NotThere);
    EXPECT_EQ(revealItems({m_file, m_file + " 2"}).problem, FinderProblem::NotThere);
    EXPECT_EQ(openFolders({""}).problem, FinderProblem::NotThere);
    EXPECT_EQ(showInformation({"relative"}).problem, FinderProblem::NotThere);
    EXPECT_EQ(openItem("").problem, FinderProblem::NotThere);
    EXPECT_TRUE(m_desktop.lines().empty()) << "nothing was started";
}

TEST_F(FileBrowserWindows, NeedABrowser) {
    FinderOutcome const outcome = revealItems({m_file});
    EXPECT_EQ(outcome.problem, FinderProblem::NoApplication);
    EXPECT_FALSE(outcome.reason.empty());
    EXPECT_EQ(openItem(m_file).problem, FinderProblem::NoApplication);
}

TEST_F(FileBrowserWindows, NeedABus) {
    installService("serve");
    EnvironmentVariable const none("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_desktop.folder.path("none"));
    EXPECT_EQ(revealItems({m_file}).problem, FinderProblem::NoBus);
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FileBrowserWindows, NeedADisplay) {
    installService("serve");
    m_desktop.folder.makeFile("data/applications/editor.desktop",
                              "[Desktop Entry]\nName=Editor\nExec=" + m_desktop.fake("open") + " %f\n");
    EnvironmentVariable const none("DISPLAY", "");
    EXPECT_EQ(revealItems({m_file}).problem, FinderProblem::NoDisplay);
    EXPECT_EQ(openItem(m_desktop.folder.makeFile("text.txt", "x")).problem, FinderProblem::NoDisplay);
    EXPECT_TRUE(m_desktop.lines().empty());
}

TEST_F(FileBrowserWindows, AreShownByWhoeverOffersTheService) {
    ChildProcess const other({fakeFileBrowser(), "serve", m_desktop.folder.path("other log")});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    installService("ends");
    EXPECT_TRUE(revealItems({m_file}).isDone());
    EXPECT_TRUE(m_desktop.lines().empty()) << "the default one was not started";
}

TEST_F(FileBrowserWindows, WaitForABrowserThatStartsItselfOnceMore) {
    installService("starts");
    EXPECT_TRUE(revealItems({m_file}).isDone());
    EXPECT_EQ(m_desktop.lines(), (Lines{"started starts", "started serve", "ShowItems " + m_uri + "/file"}));
}

TEST_F(FileBrowserWindows, DoNotWaitForEverForABrowserToStart) {
    Impatience const impatience;
    installService("nameless");
    EXPECT_EQ(revealItems({m_file}).problem, FinderProblem::NoAnswer);
    installService("ends");
    EXPECT_EQ(revealItems({m_file}).problem, FinderProblem::NoAnswer);
}

TEST_F(FileBrowserWindows, DoNotWaitForEverForAnAnswer) {
    installService("silent");
    ChildProcess const silent({fakeFileBrowser(), "silent", m_desktop.log()});
    ASSERT_TRUE(waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    Impatience const impatience;
    EXPECT_EQ(revealItems({m_file}).problem, FinderProblem::NoAnswer);
}

TEST_F(FileBrowserWindows, SayWhenTheBrowserCannot) {
    installService("refuse");
    FinderOutcome const outcome = showInformation({m_file});
    EXPECT_EQ(outcome.problem, FinderProblem::Refused);
    EXPECT_NE(outcome.reason.find("It has no hands"), std::string::npos) << outcome.reason;
}

TEST_F(FileBrowserWindows, AreStartedWithTheFolderWhereTheBrowserIsNoService) {
    m_desktop.install(m_desktop.fake("open") + " --window %f");
    EXPECT_TRUE(revealItems({m_file, m_desktop.folder.makeFile("a b/other", "")}).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open --window " + m_desktop.folder.path("a b")});
    EXPECT_TRUE(openFolders({m_desktop.folder.path("home")}).isDone());
    EXPECT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_EQ(m_desktop.lastLine(), "started open --window " + m_desktop.folder.path("home"));
    EXPECT_EQ(showInformation({m_file}).problem, FinderProblem::Refused);
}

TEST_F(FileBrowserWindows, SayWhenTheBrowserIsNoProgram) {
    m_desktop.install(m_desktop.folder.makeFile("program", "neither a script nor a program"));
    ASSERT_EQ(::chmod(m_desktop.folder.path("program").c_str(), 0755), 0);
    EXPECT_EQ(revealItems({m_file}).problem, FinderProblem::NoAnswer);
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
    EXPECT_TRUE(openItem(m_text).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + m_text});
    // What a type is a kind of counts as well.
    std::string const source = m_desktop.folder.makeFile("tool.py", "print(1)\n");
    EXPECT_TRUE(openItem(source).isDone());
    EXPECT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_EQ(m_desktop.lastLine(), "started open " + source);
}

TEST_F(OpenedItem, IsKnownByTheContentsALinkLeadsTo) {
    installEditor(" %f");
    std::string const link = m_desktop.folder.path("letter");
    ASSERT_EQ(::symlink(m_desktop.folder.makeFile("page", "Dear Anna").c_str(), link.c_str()), 0);
    EXPECT_TRUE(openItem(link).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + link});
    // Never opened: nobody writes to it.
    ASSERT_EQ(::mkfifo(m_desktop.folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(openItem(m_desktop.folder.path("pipe")).problem, FinderProblem::NoApplication);
}

TEST_F(OpenedItem, IsOneArgumentWhateverItsName) {
    installEditor(" --name=%c --uri=%u %% %i");
    std::string const text = m_desktop.folder.makeFile("$(touch x) \"'.txt", "x");
    EXPECT_TRUE(openItem(text).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open --name=The Editor --uri=file://" +
                                        m_desktop.folder.path("%24%28touch%20x%29%20%22%27.txt") + " %"});
    installEditor("");
    EXPECT_TRUE(openItem(text).isDone());
    EXPECT_EQ(m_desktop.lines(2).size(), 2U);
    EXPECT_EQ(m_desktop.lastLine(), "started open " + text);
}

TEST_F(OpenedItem, IsOpenedInATerminalByAnApplicationForTerminals) {
    installEditor(" %f", "Terminal=true\n");
    EnvironmentVariable const path("PATH", m_desktop.folder.path("bin"));
    EXPECT_EQ(openItem(m_text).problem, FinderProblem::Refused) << "there is no terminal";
    std::string const terminal =
        m_desktop.folder.makeFile("bin/x-terminal-emulator", "#!/bin/sh\nshift\nexec \"$@\"\n");
    ASSERT_EQ(::chmod(terminal.c_str(), 0755), 0);
    EXPECT_TRUE(openItem(m_text).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + m_text});
}

} // namespace
} // namespace mac::test
