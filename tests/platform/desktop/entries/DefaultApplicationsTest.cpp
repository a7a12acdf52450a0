#include "platform/desktop/browser/FileBrowser.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::test {

namespace {

// A desktop of its own: nothing of the computer's is seen.
class FileBrowserOfADesktop : public testing::Test {
protected:
    std::string makeProgram(std::string const& name) const {
        std::string const path = m_folder.makeFile("bin/" + name, "#!/bin/sh\n");
        EXPECT_EQ(::chmod(path.c_str(), 0755), 0);
        return path;
    }
    void makeEntry(std::string const& path, std::string const& program) const {
        m_folder.makeFile(path, "[Desktop Entry]\nName=" + program + "\nExec=" + program + " %F\n");
        makeProgram(program);
    }
    void makeList(std::string const& path, std::string const& names) const {
        m_folder.makeFile(path, "[Default Applications]\ninode/directory=" + names + "\n");
    }
    static std::string found() {
        std::optional<FileBrowser> const browser = defaultFileBrowser();
        return browser ? browser->application.name : "";
    }

    TemporaryFolder m_folder;
    EnvironmentVariable m_path{"PATH", m_folder.path("bin")};
    EnvironmentVariable m_dataHome{"XDG_DATA_HOME", m_folder.path("home")};
    EnvironmentVariable m_dataDirs{"XDG_DATA_DIRS", m_folder.path("local") + "::" + m_folder.path("system")};
    EnvironmentVariable m_configHome{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable m_configDirs{"XDG_CONFIG_DIRS", m_folder.path("etc")};
    EnvironmentVariable m_desktop{"XDG_CURRENT_DESKTOP", "XFCE:Test"};
};

} // namespace

TEST_F(FileBrowserOfADesktop, IsMissingIfNoneIsInstalled) { EXPECT_EQ(found(), ""); }

TEST_F(FileBrowserOfADesktop, IsWhatTheUserChose) {
    makeEntry("system/applications/thunar.desktop", "thunar");
    makeEntry("system/applications/other.desktop", "other");
    makeList("system/applications/mimeapps.list", "thunar.desktop");
    EXPECT_EQ(found(), "thunar");
    makeList("etc/xfce-mimeapps.list", "other.desktop");
    EXPECT_EQ(found(), "other");
    makeList("config/mimeapps.list", "gone.desktop;thunar.desktop;other.desktop;");
    EXPECT_EQ(found(), "thunar") << "an entry that is not there is passed over";
    makeList("config/test-mimeapps.list", "other.desktop");
    EXPECT_EQ(found(), "other");
}

TEST_F(FileBrowserOfADesktop, IsAProgramKnownForFoldersWhereNoneWasChosen) {
    makeEntry("system/applications/thunar.desktop", "thunar");
    m_folder.makeFile("system/applications/mimeinfo.cache", "[MIME Cache]\ninode/directory=thunar.desktop;\n");
    EXPECT_EQ(found(), "thunar");
    makeEntry("home/applications/added.desktop", "added");
    m_folder.makeFile("config/mimeapps.list", "[Added Associations]\ninode/directory=added.desktop;\n");
    EXPECT_EQ(found(), "added");
}

TEST_F(FileBrowserOfADesktop, IsNoProgramThatTheUserTookAwayFromFolders) {
    makeEntry("system/applications/thunar.desktop", "thunar");
    makeEntry("system/applications/other.desktop", "other");
    m_folder.makeFile("system/applications/mimeinfo.cache",
                      "[MIME Cache]\ninode/directory=thunar.desktop;other.desktop;\n");
    m_folder.makeFile("config/mimeapps.list", "[Removed Associations]\ninode/directory=thunar.desktop;\n");
    EXPECT_EQ(found(), "other");
    m_folder.makeFile("system/applications/mimeapps.list", "[Added Associations]\ninode/directory=thunar.desktop;\n");
    EXPECT_EQ(found(), "other") << "a list that counts less does not bring it back";
}

TEST_F(FileBrowserOfADesktop, HasAnEntryInAFolderThatItsNameTells) {
    makeEntry("local/applications/kde/org-files.desktop", "files");
    makeList("config/mimeapps.list", "kde-org-files.desktop");
    EXPECT_EQ(found(), "files");
    makeList("config/mimeapps.list", "../applications/kde/org-files.desktop");
    EXPECT_EQ(found(), "") << "a name is no path";
}

TEST_F(FileBrowserOfADesktop, HasAProgramThatIsThere) {
    m_folder.makeFile("home/applications/a.desktop", "[Desktop Entry]\nName=a\nExec=missing\n");
    m_folder.makeFile("home/applications/b.desktop", "[Desktop Entry]\nName=b\nExec=\"unended\n");
    m_folder.makeFile("home/applications/c.desktop", "[Desktop Entry]\nName=c\n");
    makeEntry("home/applications/d.desktop", "d");
    makeList("config/mimeapps.list", "a.desktop;b.desktop;c.desktop;d.desktop");
    EXPECT_EQ(found(), "d");
}

TEST_F(FileBrowserOfADesktop, IsWhatTheUserChoseInXfcesOwnSettings) {
    m_folder.makeFile("system/applications/xfce4-file-manager.desktop",
                      "[Desktop Entry]\nName=File Manager\nExec=exo-open --launch FileManager %u\n");
    makeList("config/mimeapps.list", "xfce4-file-manager.desktop");
    std::string const launcher = makeProgram("exo-open");
    auto const makeHelper = [&](std::string const& name, std::string const& parameters) {
        m_folder.makeFile("system/xfce4/helpers/" + name + ".desktop",
                          "[Desktop Entry]\nType=X-XFCE-Helper\nName=" + name + "\nX-XFCE-Binaries=none;" + name +
                              ";\nX-XFCE-CommandsWithParameter=" + parameters + ";\n");
        return makeProgram(name);
    };
    std::string const thunar = makeHelper("thunar", "%B \"%s\"");
    std::string const other = makeHelper("other", "%B -n \"%s\"");
    EXPECT_EQ(defaultFileBrowser()->program, launcher) << "nothing was chosen";
    m_folder.makeFile("etc/xfce4/helpers.rc", "# The defaults\nWebBrowser=other\nFileManager=thunar\n");
    EXPECT_EQ(defaultFileBrowser()->program, thunar);
    EXPECT_EQ(commandOf(defaultFileBrowser()->application, {"/a b"}),
              (std::vector{thunar, std::string("file:///a%20b")}));
    m_folder.makeFile("config/xfce4/helpers.rc", "FileManager=other\n");
    EXPECT_EQ(defaultFileBrowser()->program, other);
    EXPECT_EQ(commandOf(defaultFileBrowser()->application, {"/a"}),
              (std::vector<std::string>{other, "-n", "file:///a"}));
    EXPECT_EQ(found(), "File Manager");
    m_folder.makeFile("config/xfce4/helpers.rc", "FileManager=../helpers/thunar\n");
    EXPECT_EQ(defaultFileBrowser()->program, launcher) << "a name is no path";
}

TEST_F(FileBrowserOfADesktop, IsNoEntryThatIsHidden) {
    makeEntry("home/applications/shown.desktop", "shown");
    m_folder.makeFile("home/applications/hidden.desktop", "[Desktop Entry]\nName=hidden\nExec=shown\nHidden=true\n");
    makeList("config/mimeapps.list", "hidden.desktop;shown.desktop");
    EXPECT_EQ(found(), "shown");
}

TEST_F(FileBrowserOfADesktop, IsLookedForByNoListThatIsNotAbsolute) {
    makeEntry("home/applications/d.desktop", "d");
    makeList("config/mimeapps.list", "d.desktop");
    EnvironmentVariable const relative("XDG_CONFIG_HOME", "config");
    EnvironmentVariable const home("HOME", m_folder.path("none"));
    EXPECT_EQ(found(), "");
}

TEST_F(FileBrowserOfADesktop, IsKnownByItsFileBehindLinks) {
    makeEntry("home/applications/d.desktop", "d");
    makeList("config/mimeapps.list", "d.desktop");
    std::string const real = makeProgram("real");
    ASSERT_EQ(::unlink(m_folder.path("bin/d").c_str()), 0);
    ASSERT_EQ(::symlink(real.c_str(), m_folder.path("bin/d").c_str()), 0);
    ASSERT_TRUE(defaultFileBrowser().has_value());
    EXPECT_EQ(defaultFileBrowser()->application.executable, real);
    EXPECT_EQ(defaultFileBrowser()->application.entryPath, m_folder.path("home/applications/d.desktop"));
}

} // namespace mac::test
