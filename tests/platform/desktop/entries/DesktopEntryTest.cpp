#include "platform/desktop/entries/DesktopEntry.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mac::test {
namespace {

using Words = DesktopEntry::Words;

DesktopEntry entryOf(std::string const& lines) {
    return DesktopEntry::read("[Desktop Entry]\nType=Application\n" + lines, "/x/entry.desktop");
}

TEST(DesktopEntry, HasANameInTheFirstLanguageThatItKnows) {
    DesktopEntry const entry = entryOf("Name=Files\nName[de]=Dateien\nName[pt_BR]=Arquivos\nName[fr]=\n");
    EXPECT_EQ(entry.name(), "Files");
    EXPECT_EQ(entry.localizedName({"fr", "pt_BR", "de"}), "Arquivos") << "an empty name is none";
    EXPECT_EQ(entry.localizedName({"ja"}), "Files");
    EXPECT_EQ(entry.path(), "/x/entry.desktop");
    EXPECT_EQ(entryOf("Name=\n").name(), std::nullopt);
    EXPECT_EQ(DesktopEntry::read("[Other]\nName=x\n").localizedName({"de"}), std::nullopt);
    EXPECT_EQ(DesktopEntry::readFile("/none.desktop").name(), std::nullopt);
}

TEST(DesktopEntry, HasTheWordsOfItsCommandLine) {
    EXPECT_EQ(entryOf("Exec=\"/a b\" --x %U\n").command(), (Words{"/a b", "--x", "%U"}));
    for (char const* const lines : {"", "Exec=\n", "Exec=\"a\n"})
        EXPECT_EQ(entryOf(lines).command(), std::nullopt) << lines;
}

TEST(DesktopEntry, HasCommandsOfActions) {
    DesktopEntry const entry =
        entryOf("Exec=a\nActions=New;QUIT;Gone;\n[Desktop Action QUIT]\nExec=a -q\n[Desktop Action Other]\nExec=b\n");
    EXPECT_EQ(entry.commandOfAction("quit"), (Words{"a", "-q"}));
    EXPECT_EQ(entry.commandOfAction("gone"), std::nullopt) << "it has no group";
    EXPECT_EQ(entry.commandOfAction("other"), std::nullopt) << "it is not listed";
}

TEST(DesktopEntry, IsShownOnTheDesktopsThatItNames) {
    EnvironmentVariable const desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    EXPECT_TRUE(entryOf("").isShownHere());
    EXPECT_TRUE(entryOf("OnlyShowIn=KDE;GNOME;\n").isShownHere());
    EXPECT_TRUE(entryOf("OnlyShowIn=GNOME;\n").isMadeForThisDesktop());
    EXPECT_FALSE(entryOf("").isMadeForThisDesktop());
    EXPECT_FALSE(entryOf("OnlyShowIn=gnome;\n").isShownHere()) << "names differ by case";
    EXPECT_FALSE(entryOf("OnlyShowIn=KDE;\n").isShownHere());
    EXPECT_FALSE(entryOf("NotShowIn=ubuntu;\n").isShownHere());
    EXPECT_TRUE(entryOf("NotShowIn=KDE;\n").isShownHere());
    EXPECT_FALSE(entryOf("Hidden=true\n").isShownHere());
    EXPECT_FALSE(entryOf("NoDisplay=true\n").isShownHere());
    EXPECT_FALSE(entryOf("Type=Link\n").isShownHere());
}

class InstalledDesktopEntry : public testing::Test {
protected:
    std::string makeProgram(std::string const& name) const {
        std::string const path = m_folder.makeFile("bin/" + name, "#!/bin/sh\n");
        EXPECT_EQ(::chmod(path.c_str(), 0755), 0);
        return path;
    }

    TemporaryFolder const m_folder{};
    EnvironmentVariable const m_path{"PATH", m_folder.path("bin")};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("home")};
    EnvironmentVariable const m_dirs{"XDG_DATA_DIRS", m_folder.path("local") + ":" + m_folder.path("system")};
};

TEST_F(InstalledDesktopEntry, CanBeStartedIfItsProgramsAreThere) {
    makeProgram("a");
    EXPECT_TRUE(entryOf("Exec=a %f\n").canBeStarted());
    EXPECT_TRUE(entryOf("Exec=a\nTryExec=a\n").canBeStarted());
    EXPECT_TRUE(entryOf("Exec=a\nTryExec=\n").canBeStarted());
    EXPECT_FALSE(entryOf("Exec=a\nTryExec=b\n").canBeStarted());
    EXPECT_FALSE(entryOf("Exec=b\n").canBeStarted());
    EXPECT_FALSE(entryOf("Exec=a\nHidden=true\n").canBeStarted());
    EXPECT_FALSE(entryOf("").canBeStarted());
}

TEST_F(InstalledDesktopEntry, MasksEntriesOfItsNameInLaterFolders) {
    std::string const own = m_folder.makeFile("home/applications/b.desktop", "");
    std::string const other = m_folder.makeFile("local/applications/a.desktop", "");
    m_folder.makeFile("system/applications/a.desktop", "");
    m_folder.makeFile("system/applications/b.desktop", "");
    m_folder.makeFile("system/applications/readme.txt", "");
    std::vector<std::string> paths;
    for (InstalledEntry const& entry : installedEntries())
        paths.push_back(entry.path);
    EXPECT_EQ(paths, (std::vector{own, other}));
    EXPECT_EQ(installedEntries().at(0).fileName, "b.desktop");
    EXPECT_EQ(installedEntries().at(0).identifier(), "b");
}

TEST_F(InstalledDesktopEntry, IsFoundByItsID) {
    std::string const deeper = m_folder.makeFile("local/applications/kde/org-files.desktop", "");
    EXPECT_EQ(pathOfEntryWithID("kde-org-files.desktop"), deeper);
    EXPECT_EQ(pathOfEntryWithID("kde/org-files.desktop"), std::nullopt) << "an ID is no path";
    EXPECT_EQ(pathOfEntryWithID("files.desktop"), std::nullopt);
}

} // namespace
} // namespace mac::test
