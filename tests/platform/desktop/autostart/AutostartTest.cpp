#include "platform/desktop/autostart/Autostart.h"
#include "tests/platform/desktop/autostart/AutostartFolders.h"
#include "tests/support/OrdinaryUser.h"
#include <cerrno>
#include <ostream>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

using AutostartTest = AutostartFolders;

namespace {

// Lines of an entry, and whether a desktop starts its program.
struct EntryLines {
    char const* desktop;
    char const* lines;
    bool isStarted;
};

void PrintTo(EntryLines const& tried, std::ostream* stream) { *stream << tried.desktop << " " << tried.lines; }

class AutostartKeys : public AutostartFolders, public testing::WithParamInterface<EntryLines> {
    EnvironmentVariable const m_current{"XDG_CURRENT_DESKTOP", GetParam().desktop};
};

} // namespace

TEST_F(AutostartTest, WithoutFoldersThereAreNoItems) {
    AutostartItems const found = autostartItems();
    EXPECT_TRUE(found.items.empty());
    EXPECT_FALSE(found.problem);
}

TEST_F(AutostartTest, ItemsAreInTheOrderOfTheirNamesAndOwnOnesLast) {
    addOfUser("b.desktop", entry("/bin/b"));
    addOfUser("a.desktop", entry("/bin/own", "X-Framekeeper-Order=2\n"));
    addOfUser("A.desktop", entry("/bin/own", "X-Framekeeper-Order=10\n"));
    addOfSystem("c.desktop", entry("/bin/c"));
    addOfSystem("B.desktop", entry("/bin/B"));
    addOfUser("text.txt", entry("/bin/b"));
    EXPECT_EQ(items(), (Names{"B", "b", "c", "a", "A"}));
}

TEST_F(AutostartTest, TheFirstFileOfANameCounts) {
    addOfUser("a.desktop", entry("/bin/user"));
    addOfSystem("a.desktop", entry("/bin/system"));
    AutostartItems const found = autostartItems();
    ASSERT_EQ(found.items.size(), 1u);
    EXPECT_EQ(found.items[0].entry.command, "/bin/user");
    EXPECT_TRUE(found.items[0].isOfUser);
}

TEST_F(AutostartTest, AnEntryThatStartsNothingHereMasksOneOfItsName) {
    for (char const* const line : {"Hidden=true\n", "OnlyShowIn=Other;\n", "TryExec=no-such-program\n"}) {
        addOfUser("a.desktop", entry("/bin/user", line));
        addOfSystem("a.desktop", entry("/bin/system"));
        EXPECT_EQ(items(), Names()) << line;
    }
}

TEST_F(AutostartTest, WhatIsNoEntryMasksNothing) {
    addOfSystem("empty.desktop", entry("/bin/a"));
    addOfUser("empty.desktop", "");
    addOfSystem("null.desktop", entry("/bin/a"));
    ASSERT_EQ(::symlink("/dev/null", pathOfUser("null.desktop").c_str()), 0);
    addOfSystem("loop.desktop", entry("/bin/a"));
    ASSERT_EQ(::symlink("loop.desktop", pathOfUser("loop.desktop").c_str()), 0);
    addOfSystem("folder.desktop", entry("/bin/a"));
    ASSERT_EQ(::mkdir(pathOfUser("folder.desktop").c_str(), 0700), 0);
    addOfSystem("pipe.desktop", entry("/bin/a"));
    ASSERT_EQ(::mkfifo(pathOfUser("pipe.desktop").c_str(), 0600), 0);
    EXPECT_EQ(items(), (Names{"empty", "folder", "loop", "null", "pipe"}));
}

TEST_F(AutostartTest, LinksToEntriesAndALinkedFolderAreFollowed) {
    m_folder.makeFile("elsewhere/real.desktop", entry("/bin/a"));
    m_folder.makeFolder("config");
    ASSERT_EQ(::symlink("../elsewhere", m_folder.path("config/autostart").c_str()), 0);
    ASSERT_EQ(::symlink("real.desktop", m_folder.path("elsewhere/link.desktop").c_str()), 0);
    EXPECT_EQ(items(), (Names{"link", "real"}));
    m_folder.makeFile("elsewhere/real.desktop", entry("/bin/a", "Hidden=true\n"));
    EXPECT_EQ(items(), Names());
}

TEST_P(AutostartKeys, AreReadAsTheDesktopReadsThem) {
    addOfUser("a.desktop", entry("/bin/true", GetParam().lines));
    m_folder.makeFile("config/there", "");
    m_folder.makeFile("config/settings", "[Group]\non=true\noff=false\n");
    EXPECT_EQ(!items().empty(), GetParam().isStarted);
}

INSTANTIATE_TEST_SUITE_P(
    Common, AutostartKeys,
    testing::Values(EntryLines{"", "", true}, EntryLines{"", "Hidden=false\n", true},
                    EntryLines{"", "Hidden=true\n", false}, EntryLines{"", "OnlyShowIn=XFCE;\n", false},
                    EntryLines{"", "NotShowIn=XFCE;\n", true}, EntryLines{"", "TryExec=/bin/true\n", true},
                    EntryLines{"", "TryExec=/no/program\n", false}, EntryLines{"", "NoDisplay=true\n", true},
                    EntryLines{"", "DBusActivatable=true\n", true}, EntryLines{"", "Type=Link\n", false},
                    EntryLines{"", "Exec=\n", false}, EntryLines{"", "Exec=\"\n", false},
                    EntryLines{"", "[Other Group]\nHidden=true\n", true},
                    EntryLines{"ubuntu:GNOME", "OnlyShowIn=Other;GNOME;\n", true},
                    EntryLines{"ubuntu:GNOME", "NotShowIn=ubuntu\n", false}));

INSTANTIATE_TEST_SUITE_P(
    OfDesktops, AutostartKeys,
    testing::Values(EntryLines{"XFCE", "Hidden=1\n", true}, EntryLines{"XFCE", "Hidden=True\n", false},
                    EntryLines{"LXQt", "Hidden=1\n", false}, EntryLines{"LXQt", "Hidden=True\n", false},
                    EntryLines{"MATE", "Hidden=1\n", false}, EntryLines{"MATE", "Hidden=True\n", true},
                    EntryLines{"X-Cinnamon", "Hidden=1\n", false}, EntryLines{"GNOME", "Hidden=True\n", true},
                    EntryLines{"KDE", "Hidden=1\n", false}, EntryLines{"KDE", "Hidden=True\n", false},
                    EntryLines{"XFCE", "OnlyShowIn=xfce;\n", true}, EntryLines{"LXQt", "NotShowIn=lxqt;\n", false},
                    EntryLines{"MATE", "OnlyShowIn=mate;\n", false}, EntryLines{"KDE", "OnlyShowIn=kde;\n", false},
                    EntryLines{"GNOME", "X-GNOME-Autostart-enabled=false\n", false},
                    EntryLines{"X-Cinnamon", "X-GNOME-Autostart-enabled=false\n", false},
                    EntryLines{"MATE", "X-GNOME-Autostart-enabled=false\n", true},
                    EntryLines{"XFCE", "X-GNOME-Autostart-enabled=false\n", true},
                    EntryLines{"MATE", "AutostartCondition=if-exists there\n", true},
                    EntryLines{"MATE", "AutostartCondition=if-exists gone\n", false},
                    EntryLines{"X-Cinnamon", "AutostartCondition=unless-exists there\n", false},
                    EntryLines{"XFCE", "AutostartCondition=if-exists gone\n", true},
                    EntryLines{"XFCE", "OnlyShowIn=Other;\nX-XFCE-Autostart-Override=true\n", true},
                    EntryLines{"LXQt", "OnlyShowIn=Other;\nX-XFCE-Autostart-Override=true\n", false},
                    EntryLines{"XFCE", "RunHook=1\n", false}, EntryLines{"XFCE", "RunHook=0\n", true},
                    EntryLines{"MATE", "RunHook=1\n", true}, EntryLines{"KDE", "X-systemd-skip=true\n", false},
                    EntryLines{"KDE", "X-GNOME-Autostart-Phase=Panel\n", false},
                    EntryLines{"XFCE", "X-GNOME-Autostart-Phase=Panel\n", true},
                    EntryLines{"KDE", "X-KDE-autostart-condition=settings:Group:off:true\n", false},
                    EntryLines{"KDE", "X-KDE-autostart-condition=settings:Group:on:false\n", true},
                    EntryLines{"KDE", "X-KDE-autostart-condition=settings:Group:none:false\n", false},
                    EntryLines{"KDE", "X-KDE-autostart-condition=nonsense\n", true}));

TEST_F(AutostartTest, GNOMEAndMATEReadAFolderOfTheirOwnInBetween) {
    m_folder.makeFile("share/gnome/autostart/a.desktop", entry("/bin/between"));
    m_folder.makeFile("share/mate/autostart/m.desktop", entry("/bin/between"));
    addOfSystem("a.desktop", entry("/bin/system"));
    EXPECT_EQ(items(), Names{"a"});
    EnvironmentVariable const current("XDG_CURRENT_DESKTOP", "GNOME");
    ASSERT_EQ(items(), Names{"a"});
    EXPECT_EQ(autostartItems().items[0].entry.command, "/bin/between");
    EXPECT_FALSE(autostartItems().items[0].isOfUser);
}

TEST_F(AutostartTest, AChangedFileIsReadAgain) {
    addOfUser("a.desktop", entry("/bin/one"));
    EXPECT_EQ(autostartItems().items[0].entry.command, "/bin/one");
    addOfUser("a.desktop", entry("/bin/two"));
    EXPECT_EQ(autostartItems().items[0].entry.command, "/bin/two");
}

TEST_F(AutostartTest, HostileFilesAreNoItemsAndHarmNothing) {
    addOfUser("good.desktop", entry("/bin/good"));
    addOfUser("huge.desktop", "");
    ASSERT_EQ(::truncate(pathOfUser("huge.desktop").c_str(), off_t{1} << 30), 0);
    addOfUser("line.desktop", std::string(1'000'000, 'x'));
    std::string keys = "[Desktop Entry]\n";
    for (int index = 0; index < 1'000'000; ++index)
        keys += "K" + std::to_string(index) + "=\n";
    addOfUser("keys.desktop", keys);
    addOfUser("groups.desktop", entry("/bin/first") + "[Other]\nExec=/bin/other\n[Desktop Entry]\nExec=/bin/last\n");
    EXPECT_EQ(items(), (Names{"good", "groups"}));
    EXPECT_EQ(autostartItems().items[1].entry.command, "/bin/last");
}

TEST_F(AutostartTest, AFolderThatCannotBeReadIsTold) {
    addOfSystem("a.desktop", entry("/bin/a"));
    m_folder.makeFile("config/autostart", "no folder");
    AutostartItems const found = autostartItems();
    ASSERT_TRUE(found.problem);
    EXPECT_EQ(found.problem->item, m_folder.path("config/autostart"));
    EXPECT_TRUE(found.problem->is(ENOTDIR));
    EXPECT_EQ(found.items.size(), 1u);
}

// What the user may not read in the system's folders starts nothing for that user.
TEST_F(AutostartTest, AFileOfTheUserThatCannotBeReadIsTold) {
    addOfUser("a.desktop", entry("/bin/a"));
    addOfSystem("b.desktop", entry("/bin/b"));
    std::string const hidden = m_folder.makeFile("system/autostart/hidden.desktop", entry("/bin/hidden"));
    ASSERT_EQ(::chmod(hidden.c_str(), 0), 0);
    for (char const* const item : {"", "config", "config/autostart", "config/autostart/a.desktop", "system"})
        OrdinaryUser::own(m_folder.path(item));
    OrdinaryUser const user;
    AutostartItems const readable = autostartItems();
    EXPECT_FALSE(readable.problem);
    EXPECT_EQ(readable.items.size(), 2U);
    ASSERT_EQ(::chmod(pathOfUser("a.desktop").c_str(), 0), 0);
    AutostartItems const unreadable = autostartItems();
    ASSERT_TRUE(unreadable.problem);
    EXPECT_EQ(unreadable.problem->item, pathOfUser("a.desktop"));
    EXPECT_TRUE(unreadable.problem->is(EACCES));
    EXPECT_EQ(unreadable.items.size(), 1U);
}

TEST_F(AutostartTest, ALinkThatLeadsNowhereIsNoItem) {
    addOfUser("a.desktop", entry("/bin/a"));
    ASSERT_EQ(::symlink("nowhere", pathOfUser("b.desktop").c_str()), 0);
    ASSERT_EQ(::symlink("c.desktop", pathOfUser("c.desktop").c_str()), 0);
    EXPECT_FALSE(autostartItems().problem);
    EXPECT_EQ(items(), Names{"a"});
}

} // namespace mac::test
