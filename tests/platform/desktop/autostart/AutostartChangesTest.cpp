#include "platform/desktop/autostart/AutostartChanges.h"
#include "platform/desktop/HexText.h"
#include "platform/desktop/entries/StartedItem.h"
#include "tests/platform/desktop/autostart/AutostartFolders.h"
#include "tests/support/Failures.h"
#include "tests/support/OrdinaryUser.h"
#include <cerrno>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {

namespace {

class AutostartChanges : public AutostartFolders {
protected:
    static AutostartItem item(std::string const& fileName) {
        for (AutostartItem& found : autostartItems().items)
            if (found.fileName == fileName) return found;
        return {};
    }
    static RemovedAutostart removed(std::string const& fileName) {
        Result<RemovedAutostart> result = removeAutostart(item(fileName));
        EXPECT_TRUE(result.hasValue()) << result.problem().text();
        return result.hasValue() ? result.takeValue() : RemovedAutostart{};
    }
    static std::string restored(RemovedAutostart const& item) {
        Result<std::string> name = restoreAutostart(item);
        return name.hasValue() ? name.takeValue() : name.problem().text();
    }
};

constexpr char Program[] = "/opt/Mirror Frame.app/Contents/Linux/Mirror Frame";
constexpr char Bundle[] = "/opt/Mirror Frame.app";

} // namespace

TEST_F(AutostartChanges, ANewEntryIsANewFileThatStartsTheProgram) {
    Result<std::string> const name = addAutostart({.program = Program, .item = Bundle, .order = 3, .note = "00ff"});
    ASSERT_TRUE(name.hasValue());
    EXPECT_EQ(name.value(), "framekeeper-mirror-frame.desktop");
    AutostartItem const added = item(name.value());
    EXPECT_EQ(added.entry.command, std::string("\"") + Program + "\"");
    EXPECT_EQ(added.started, Bundle);
    ASSERT_TRUE(added.entry.own.has_value());
    EXPECT_EQ(added.entry.own->order, 3u);
    EXPECT_EQ(added.entry.own->note, "00ff");
}

TEST_F(AutostartChanges, ANewEntryTakesNoNameThatAFolderHas) {
    addOfUser("framekeeper-mirror-frame.desktop", "no entry");
    addOfSystem("framekeeper-mirror-frame-2.desktop", entry("/bin/a"));
    EXPECT_EQ(addAutostart({.program = Program, .item = Bundle}).valueOr(""), "framekeeper-mirror-frame-3.desktop");
    EXPECT_EQ(contentsOf(pathOfUser("framekeeper-mirror-frame.desktop")), "no entry");
}

TEST_F(AutostartChanges, AProgramThatDesktopsReadDifferentlyIsStartedByTheLauncher) {
    for (char const* const name : {"\"", "$x", "50%", "it's", "a=b", "a\\b", "`", "\t", "\n", "\x7F", "\xFF"}) {
        std::string const program = std::string("/opt/") + name + "/Mirror Frame.app/Contents/Linux/m";
        Result<std::string> const file = addAutostart({.program = program, .item = Bundle});
        ASSERT_TRUE(file.hasValue());
        EXPECT_EQ(item(file.value()).entry.command, "\"" + loginLauncherPath() + "\" " + hexTextOf(program));
        EXPECT_EQ(item(file.value()).started, std::string("/opt/") + name + "/Mirror Frame.app");
    }
    EXPECT_TRUE(isReadAlikeByDesktops("/a b!#&()*+,-./:;<>?@[]^_{|}~\xC3\xA4"));
    EXPECT_TRUE(isReadAlikeByDesktops("/~a/b"));
    EXPECT_FALSE(isReadAlikeByDesktops("/a~/b"));
    EXPECT_FALSE(isReadAlikeByDesktops("/a~"));
}

TEST_F(AutostartChanges, NoEntryIsWrittenForALauncherThatIsMissing) {
    NewAutostartEntry missing{.program = "/opt/$x", .item = Bundle, .launcher = m_folder.path("no launcher")};
    EXPECT_EQ(addAutostart(missing).problem().code, ENOENT);
    missing.program.clear();
    EXPECT_EQ(addAutostart(missing).problem().code, ENOENT);
    EXPECT_EQ(items(), Names());
    missing.launcher = m_folder.makeFile("not executable", "x");
    EXPECT_EQ(addAutostart(missing).problem().code, ENOENT);
    missing.program = Program;
    EXPECT_TRUE(addAutostart(missing).hasValue()) << "needs none";
}

TEST_F(AutostartChanges, ARemovedEntryComesBackAsItWas) {
    std::string const text = entry("/bin/true") + "# a comment\nX-Other=kept\n";
    addOfUser("a.desktop", text);
    addOfUser("b.desktop", entry("/bin/b"));
    RemovedAutostart const gone = removed("a.desktop");
    EXPECT_EQ(namesOfUser(), Names{"b.desktop"});
    EXPECT_EQ(restored(gone), "a.desktop");
    EXPECT_EQ(contentsOf(pathOfUser("a.desktop")), text);
}

TEST_F(AutostartChanges, WhatARemovedEntryHidFromOthersStaysHidden) {
    for (mode_t const permissions : {0600U, 0640U, 0755U}) {
        addOfUser("a.desktop", entry("/bin/true --secret"));
        ASSERT_EQ(::chmod(pathOfUser("a.desktop").c_str(), permissions), 0);
        ASSERT_EQ(::chown(pathOfUser("a.desktop").c_str(), ::geteuid(), ::getegid()), 0);
        EXPECT_EQ(restored(removed("a.desktop")), "a.desktop");
        struct stat status {};
        ASSERT_EQ(::stat(pathOfUser("a.desktop").c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, permissions);
    }
}

TEST_F(AutostartChanges, ANewEntryIsWrittenByItsOwnerAlone) {
    for (mode_t const withheld : {0U, 0777U}) {
        mode_t const usual = ::umask(withheld);
        Result<std::string> const name = addAutostart({.program = Program, .item = Bundle});
        ::umask(usual);
        ASSERT_TRUE(name.hasValue());
        struct stat status {};
        ASSERT_EQ(::stat(pathOfUser(name.value()).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, withheld == 0 ? 0644U : 0600U);
    }
}

TEST_F(AutostartChanges, AnEntryWhoseMaskIsGoneComesBack) {
    addOfUser("a.desktop", entry("/bin/user"));
    addOfSystem("a.desktop", entry("/bin/system"));
    addOfSystem("s.desktop", entry("/bin/system"));
    RemovedAutostart const gone = removed("a.desktop");
    RemovedAutostart const hidden = removed("s.desktop");
    ASSERT_EQ(::unlink(pathOfUser("a.desktop").c_str()), 0);
    ASSERT_EQ(::unlink(pathOfUser("s.desktop").c_str()), 0);
    EXPECT_EQ(restored(gone), "a.desktop");
    EXPECT_EQ(restored(hidden), "s.desktop");
    EXPECT_EQ(contentsOf(pathOfUser("a.desktop")), entry("/bin/user"));
    EXPECT_EQ(namesOfUser(), Names{"a.desktop"});
}

TEST_F(AutostartChanges, ARemovalThatCannotBeFlushedCanStillBeTakenBack) {
    addOfUser("a.desktop", entry("/bin/true"));
    AutostartItem const there = item("a.desktop");
    withRefusedCall(SYS_fsync, EIO, [&] { EXPECT_TRUE(removeAutostart(there).hasValue()); });
    EXPECT_EQ(namesOfUser(), Names());
}

TEST_F(AutostartChanges, ARemovedLinkComesBackAndItsFileStays) {
    std::string const file = m_folder.makeFile("elsewhere/a.desktop", entry("/bin/true"));
    addOfUser("b.desktop", entry("/bin/b"));
    ASSERT_EQ(::symlink(file.c_str(), pathOfUser("a.desktop").c_str()), 0);
    RemovedAutostart const gone = removed("a.desktop");
    EXPECT_EQ(items(), Names{"b"});
    EXPECT_EQ(contentsOf(file), entry("/bin/true"));
    EXPECT_EQ(restored(gone), "a.desktop");
    EXPECT_EQ(std::filesystem::read_symlink(pathOfUser("a.desktop")), file);
}

TEST_F(AutostartChanges, AnEntryOfTheSystemIsHiddenAndShownAgain) {
    addOfSystem("a.desktop", entry("/bin/true"));
    RemovedAutostart const gone = removed("a.desktop");
    EXPECT_EQ(items(), Names());
    EXPECT_NE(contentsOf(pathOfUser("a.desktop")).find("Hidden=true"), std::string::npos);
    EXPECT_EQ(restored(gone), "a.desktop");
    EXPECT_EQ(items(), Names{"a"});
    EXPECT_EQ(namesOfUser(), Names());
}

TEST_F(AutostartChanges, AnEntryInPlaceOfTheSystemsIsRemovedWithoutShowingThat) {
    addOfUser("a.desktop", entry("/bin/user"));
    addOfSystem("a.desktop", entry("/bin/system"));
    RemovedAutostart const gone = removed("a.desktop");
    EXPECT_EQ(items(), Names());
    EXPECT_EQ(restored(gone), "a.desktop");
    EXPECT_EQ(contentsOf(pathOfUser("a.desktop")), entry("/bin/user"));
}

TEST_F(AutostartChanges, ALinkInPlaceOfTheSystemsIsRemovedWithoutShowingThat) {
    std::string const file = m_folder.makeFile("elsewhere/a.desktop", entry("/bin/user"));
    addOfSystem("a.desktop", entry("/bin/system"));
    m_folder.makeFolder("config/autostart");
    ASSERT_EQ(::symlink(file.c_str(), pathOfUser("a.desktop").c_str()), 0);
    RemovedAutostart const gone = removed("a.desktop");
    EXPECT_EQ(items(), Names());
    EXPECT_EQ(contentsOf(file), entry("/bin/user"));
    EXPECT_EQ(restored(gone), "a.desktop");
    EXPECT_EQ(std::filesystem::read_symlink(pathOfUser("a.desktop")), file);
}

// The unreadable entry may start a program that only the user's entry prevents.
TEST_F(AutostartChanges, AnEntryInPlaceOfOneThatCannotBeReadStays) {
    addOfUser("a.desktop", entry("/bin/user"));
    m_folder.makeFolder("system/autostart");
    // A regular file whose first bytes cannot be read.
    ASSERT_EQ(::symlink("/proc/self/mem", m_folder.path("system/autostart/a.desktop").c_str()), 0);
    Result<RemovedAutostart> const gone = removeAutostart(item("a.desktop"));
    ASSERT_FALSE(gone.hasValue());
    EXPECT_EQ(gone.problem().code, EIO);
    EXPECT_EQ(contentsOf(pathOfUser("a.desktop")), entry("/bin/user"));
}

TEST_F(AutostartChanges, AnEntryInPlaceOfOneThatTheUserMayNotReadIsRemoved) {
    addOfUser("a.desktop", entry("/bin/user"));
    addOfSystem("a.desktop", entry("/bin/system"));
    ASSERT_EQ(::chmod(m_folder.path("system/autostart/a.desktop").c_str(), 0), 0);
    for (char const* const owned : {"", "config", "config/autostart", "config/autostart/a.desktop"})
        OrdinaryUser::own(m_folder.path(owned));
    OrdinaryUser const user;
    EXPECT_TRUE(removeAutostart(item("a.desktop")).hasValue());
    EXPECT_EQ(namesOfUser(), Names());
}

TEST_F(AutostartChanges, NoNameIsTakenThatCannotBeLookedAt) {
    m_folder.makeFolder("config/autostart");
    withRefusedCall(SYS_newfstatat, EIO, [] {
        Result<std::string> const name = addAutostart({.program = Program, .item = Bundle});
        ASSERT_FALSE(name.hasValue());
        EXPECT_EQ(name.problem().code, EIO);
    });
    EXPECT_EQ(namesOfUser(), Names());
}

TEST_F(AutostartChanges, AnEntryThatChangedSinceItWasReadStays) {
    addOfUser("a.desktop", entry("/bin/one"));
    addOfUser("b.desktop", entry("/bin/one"));
    addOfSystem("b.desktop", entry("/bin/system"));
    AutostartItem const first = item("a.desktop");
    AutostartItem const second = item("b.desktop");
    addOfUser("a.desktop", entry("/bin/another"));
    addOfUser("b.desktop", entry("/bin/another"));
    EXPECT_EQ(removeAutostart(first).problem().code, ESTALE);
    EXPECT_EQ(removeAutostart(second).problem().code, ESTALE);
    EXPECT_EQ(contentsOf(pathOfUser("a.desktop")), entry("/bin/another"));
    EXPECT_EQ(contentsOf(pathOfUser("b.desktop")), entry("/bin/another"));
}

TEST_F(AutostartChanges, AnItemThatTookTheNameMeanwhileStays) {
    addOfUser("a.desktop", entry("/bin/one"));
    addOfSystem("s.desktop", entry("/bin/system"));
    RemovedAutostart const gone = removed("a.desktop");
    RemovedAutostart const hidden = removed("s.desktop");
    addOfUser("a.desktop", entry("/bin/another"));
    addOfUser("s.desktop", entry("/bin/another"));
    EXPECT_EQ(restored(gone), "a-2.desktop");
    EXPECT_EQ(restoreAutostart(hidden).problem().code, ESTALE);
    EXPECT_EQ(contentsOf(pathOfUser("a.desktop")), entry("/bin/another"));
    EXPECT_EQ(contentsOf(pathOfUser("a-2.desktop")), entry("/bin/one"));
    EXPECT_EQ(contentsOf(pathOfUser("s.desktop")), entry("/bin/another"));
}

TEST_F(AutostartChanges, AFolderThatMayNotBeWrittenLosesNothing) {
    addOfUser("a.desktop", entry("/bin/one"));
    addOfSystem("s.desktop", entry("/bin/system"));
    std::string const folder = m_folder.path("config/autostart");
    ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
    {
        OrdinaryUser const user;
        EXPECT_FALSE(addAutostart({.program = Program, .item = Bundle}).hasValue());
        EXPECT_FALSE(removeAutostart(item("a.desktop")).hasValue());
        EXPECT_FALSE(removeAutostart(item("s.desktop")).hasValue());
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
    EXPECT_EQ(items(), (Names{"a", "s"}));
    EXPECT_EQ(namesOfUser(), Names{"a.desktop"});
}

TEST_F(AutostartChanges, AFileInPlaceOfTheFolderIsTold) {
    m_folder.makeFile("config/autostart", "no folder");
    EXPECT_FALSE(addAutostart({.program = Program, .item = Bundle}).hasValue());
    EXPECT_EQ(contentsOf(m_folder.path("config/autostart")), "no folder");
}

TEST_F(AutostartChanges, AWritingThatTheDiskRefusesLeavesNoFile) {
    m_folder.makeFolder("config/autostart");
    withRefusedCall(SYS_fsync, EIO,
                    [] { EXPECT_FALSE(addAutostart({.program = Program, .item = Bundle}).hasValue()); });
    EXPECT_EQ(namesOfUser(), Names());
}

} // namespace mac::test
