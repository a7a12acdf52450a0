#include "platform/desktop/browser/FileBrowserKinds.h"
#include "platform/desktop/session/Session.h"
#include "tests/platform/desktop/Desktop.h"
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

using Lines = std::vector<std::string>;

// The stand-in under the file name of a browser that has a row in the table.
class FileBrowserKinds : public testing::Test {
protected:
    void TearDown() override {
        for (std::string const& program : m_programs) {
            for (ProcessIdentity const& process : sessionProcessesOf(program))
                ::kill(process.pid, SIGKILL);
        }
    }

    std::string program(std::string const& name) {
        std::string const path = m_desktop.folder.makeFolder("bin") + "/" + name;
        std::filesystem::copy_file(fakeFileBrowser(), path, std::filesystem::copy_options::skip_existing);
        m_programs.push_back(path);
        return path;
    }
    std::string command(std::string const& name, std::string const& mode) {
        return program(name) + " " + mode + " " + m_desktop.log();
    }
    // Makes a browser that logs its arguments as FakeFileBrowser.cpp does, without the log's path.
    void makeScript(std::string const& name) {
        std::string const path = m_desktop.folder.makeFile(
            "bin/" + name, "#!/bin/sh\necho \"$*\" >>'" + m_desktop.log() + "'\n[ \"$1\" = stay ] && read -r line\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        m_programs.push_back(path);
    }

    Desktop const m_desktop{};
    FileBrowserSession const m_browser{};
    Lines m_programs{};
};

TEST(FileBrowserKindOf, IsFoundByTheProgramsFileNameWithoutCase) {
    ASSERT_NE(fileBrowserKindOf("/usr/bin/Thunar"), nullptr);
    EXPECT_EQ(fileBrowserKindOf("/usr/bin/Thunar")->program, "thunar");
    EXPECT_EQ(fileBrowserKindOf("/usr/bin/thunar-settings"), nullptr);
    EXPECT_EQ(fileBrowserKindOf(""), nullptr);
}

TEST_F(FileBrowserKinds, QuitByTheSwitchOfTheirKind) {
    struct Row {
        char const* program;
        char const* quitSwitch;
    };
    for (Row const row : {Row{"caja", "-q"}, Row{"io.elementary.files", "-q"}, Row{"nautilus", "-q"}, Row{"nemo", "-q"},
                          Row{"pcmanfm-qt", "--quit"}, Row{"thunar", "-q"}}) {
        makeScript(row.program);
        std::string const path = m_desktop.folder.path(std::string("bin/") + row.program);
        m_desktop.install(path);
        ChildProcess const running({path, "stay"});
        ASSERT_TRUE(waitUntil([] { return fileBrowserProcesses().size() == 1; })) << row.program;
        ASSERT_TRUE(waitUntil([&] { return m_desktop.lastLine() == "stay"; })) << row.program;
        ASSERT_TRUE(askToQuit(fileBrowserProcesses().at(0)));
        EXPECT_TRUE(waitUntil([&] { return m_desktop.lastLine() == row.quitSwitch; })) << row.program;
    }
}

TEST_F(FileBrowserKinds, QuitBySIGTERMWithoutAWayOfTheirOwn) {
    for (char const* const name : {"krusader", "pcmanfm"}) {
        makeScript(name);
        std::string const path = m_desktop.folder.path(std::string("bin/") + name);
        m_desktop.install(path);
        ChildProcess running({path, "stay"});
        ASSERT_TRUE(waitUntil([] { return fileBrowserProcesses().size() == 1; })) << name;
        EXPECT_TRUE(askToQuit(fileBrowserProcesses().at(0)));
        EXPECT_EQ(running.wait(), -SIGTERM) << name;
    }
}

TEST_F(FileBrowserKinds, QuitByACallToEachProcess) {
    m_desktop.install(command("dolphin", "dolphin"));
    m_desktop.installService(command("dolphin", "dolphin"));
    ASSERT_TRUE(m_browser.launch().isDone());
    ASSERT_EQ(fileBrowserProcesses().size(), 1U);
    DesktopOutcome const outcome = m_browser.quit();
    EXPECT_TRUE(outcome.isDone()) << textOf(outcome);
    EXPECT_EQ(m_desktop.lines(), (Lines{"started dolphin", "asked to quit"}));
    EXPECT_TRUE(fileBrowserProcesses().empty());
}

TEST_F(FileBrowserKinds, QuitBySIGTERMIfTheyDoNotTakeTheCall) {
    m_desktop.install(command("dolphin", "serve"));
    m_desktop.installService(command("dolphin", "serve"));
    ASSERT_TRUE(m_browser.launch().isDone());
    DesktopOutcome const outcome = m_browser.quit();
    EXPECT_TRUE(outcome.isDone()) << textOf(outcome);
    EXPECT_EQ(m_desktop.lines(), Lines{"started serve"});
}

TEST_F(FileBrowserKinds, AreNotWaitedForWhenTheyNeverReply) {
    m_desktop.install(command("dolphin", "dolphin"));
    m_desktop.installService(command("dolphin", "dolphin"));
    std::string const folder = m_desktop.folder.path("home");
    DesktopOutcome const outcome = m_browser.showInformation({folder});
    EXPECT_TRUE(outcome.isDone()) << textOf(outcome);
    EXPECT_EQ(m_desktop.lines(2), (Lines{"started dolphin", "ShowItemProperties file://" + folder}));
    EXPECT_TRUE(m_browser.openFolders({folder}).isDone());
}

TEST_F(FileBrowserKinds, MayOfferTheServiceByAnotherProgram) {
    m_desktop.install(command("io.elementary.files", "open") + " %U");
    m_desktop.installService(command("io.elementary.files-daemon", "serve"));
    std::string const folder = m_desktop.folder.path("home");
    EXPECT_TRUE(m_browser.openFolders({folder}).isDone());
    EXPECT_EQ(m_desktop.lines(), (Lines{"started serve", "ShowFolders file://" + folder}));
}

TEST_F(FileBrowserKinds, AreStartedWithTheFolderWhereTheyOfferNoService) {
    m_desktop.install(command("pcmanfm", "open") + " %f");
    m_desktop.installService(command("pcmanfm", "open"));
    std::string const folder = m_desktop.folder.path("home");
    EXPECT_TRUE(m_browser.openFolders({folder}).isDone());
    EXPECT_EQ(m_desktop.lines(1), Lines{"started open " + folder});
}

} // namespace
} // namespace mac::test
