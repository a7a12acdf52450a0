#include "pathutils/AliasesAndContents.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/system/SystemError.h"
#include "tests/app/Complaints.h"
#include "tests/app/InGerman.h"
#include "tests/app/PathSources.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace framekeeper::test {

INSTANTIATE_TEST_SUITE_P(LoginItems, PathSources,
                         testing::Values(PathSource{"LoginItems", "isAutolaunchedPaths", "autolaunchItem",
                                                    &AppController::syncIsAutolaunched}));

namespace {

using mac::test::EnvironmentVariable;

std::string desktopEntry(std::string const& command, std::string const& rest = "") {
    return "[Desktop Entry]\nType=Application\nName=Item\nExec=" + command + "\n" + rest;
}

// A desktop that starts nothing at log-in but what the test puts there.
class LoginItems : public OnlyOwnCopies {
protected:
    void SetUp() override {
        OnlyOwnCopies::SetUp();
        m_controller.setValue_forKey_(m_selection, "pathsArrayController");
    }

    NSString makeCopy(std::string const& relative) const { return test::makeCopy(m_folder, relative); }
    void addEntry(std::string const& name, std::string const& text) const {
        m_folder.makeFile("config/autostart/" + name, text);
    }
    void addSystemEntry(std::string const& name, std::string const& text) const {
        m_folder.makeFile("system/autostart/" + name, text);
    }
    // The files in the user's folder, with their contents.
    std::map<std::string, std::string> userEntries() const {
        std::map<std::string, std::string> entries;
        std::filesystem::path const folder = m_folder.path("config/autostart");
        if (!std::filesystem::exists(folder)) return entries;
        for (auto const& file : std::filesystem::directory_iterator(folder)) {
            std::ifstream stream(file.path());
            entries[file.path().filename()] = {std::istreambuf_iterator<char>(stream), {}};
        }
        return entries;
    }

    // Reads all sources anew and selects the records of these paths.
    void select(std::vector<NSString> const& paths) const {
        m_controller.syncIsAutolaunched();
        m_controller.setIsOnHarddiskPaths_(NSMutableSet::set());
        for (NSString const& path : paths)
            m_controller.isOnHarddiskPaths().addObject_(path);
        m_controller.reSync();
        selectKnown(paths);
    }
    void selectKnown(std::vector<NSString> const& paths) const {
        NSMutableArray const records = NSMutableArray::array();
        for (NSString const& path : paths)
            records.addObject_(recordOf(m_controller, path));
        m_selection.setContent_(m_controller.paths());
        ASSERT_TRUE(m_selection.setSelectedObjects_(records));
    }
    void add(NSString const& path) const {
        select({path});
        m_controller.addToAutoLaunchAction_(nil);
    }
    void remove(NSString const& path) const {
        select({path});
        m_controller.unAutoLaunchAction_(nil);
    }
    // The paths of the list, in its order.
    std::vector<std::string> listed() const {
        std::vector<std::string> paths;
        for (id const& item : m_controller.allAutolaunchItems())
            paths.push_back(text(item.valueForKey_("Path")));
        return paths;
    }
    bool isLoginItem(NSString const& path) const { return flag(recordOf(m_controller, path), "isAutolaunched"); }

    TemporaryFolder const m_folder{};
    AppController m_controller = makeController();
    Complaints m_complaints{};

private:
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_configFolders{"XDG_CONFIG_DIRS", m_folder.path("system")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", "XFCE"};
    EnvironmentVariable const m_home{"HOME", m_folder.makeFolder("home")};
    NSArrayController m_selection = NSArrayController::alloc().init();
};

using Lines = std::vector<std::string>;

// A program of the desktop that writes its name into the desktop's log.
void makeProgram(mac::test::Desktop const& desktop, std::string const& name) {
    std::string const program =
        desktop.folder.makeFile("bin/" + name, "#!/bin/sh\necho " + name + " >>'" + desktop.log() + "'\n");
    ASSERT_EQ(::chmod(program.c_str(), S_IRWXU), 0);
}

} // namespace

TEST_F(LoginItems, AnAbsentListIsReadAsAnEmptyArray) {
    EXPECT_TRUE(m_controller.readAllAutolaunchItems().isEqual_(NSArray::array()));
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(LoginItems, AddingToNothingWritesAListOfOneEntry) {
    NSString const copy = makeCopy("home/Applications");
    add(copy);
    ASSERT_EQ(listed(), Lines{"~/Applications/Mirror Frame.app"});
    NSDictionary const item = as<NSDictionary>(m_controller.allAutolaunchItems().objectAtIndex_(0));
    EXPECT_TRUE(item.objectForKey_("Hide").isEqual_(NSNumber::numberWithBool_(NO)));
    EXPECT_EQ(as<NSNumber>(item.objectForKey_("Hide")).kind(), NSNumber::Kind::Boolean);
    EXPECT_EQ(item.count(), 3u);
    EXPECT_TRUE(item.objectForKey_("AliasData").isEqual_(pxAliasDataOfPath(copy)));
    EXPECT_TRUE(isLoginItem(copy));
    EXPECT_TRUE(isSame(recordOf(m_controller, copy).objectForKey_("autolaunchItem"), item));
    EXPECT_EQ(m_complaints.lines, Lines());
}

TEST_F(LoginItems, TheDesktopStartsTheProgramOfTheCopy) {
    NSString const copy = makeCopy("home/Applications");
    std::string const program = m_folder.makeFile("home/Applications/Mirror Frame.app/Contents/Linux/mirror", "");
    m_folder.makeFile("home/Applications/Mirror Frame.app/Contents/Info.plist",
                      "<plist><dict><key>CFBundleIdentifier</key><string>com.tidelark.mirrorframe</string>"
                      "<key>CFBundleExecutable</key><string>mirror</string></dict></plist>");
    add(copy);
    ASSERT_EQ(userEntries().size(), 1u);
    EXPECT_NE(userEntries().begin()->second.find("\nExec=\"" + program + "\"\n"), std::string::npos);
}

TEST_F(LoginItems, AddingAnotherCopyLeavesItsEntryAloneAndLast) {
    NSString const first = makeCopy("first");
    NSString const second = makeCopy("second");
    addEntry("zzz.desktop", desktopEntry("/bin/true"));
    addEntry("aaa.desktop", desktopEntry("/bin/false"));
    add(first);
    add(second);
    Lines const all = listed();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[2], text(second));
    EXPECT_EQ(userEntries()["zzz.desktop"], desktopEntry("/bin/true"));
    m_controller.reSync();
    EXPECT_TRUE(recordOf(m_controller, first) == nil || !isLoginItem(first));
}

TEST_F(LoginItems, AddingTheSameCopyTwiceKeepsOneEntry) {
    NSString const copy = makeCopy("copy");
    add(copy);
    add(copy);
    EXPECT_EQ(listed(), Lines{text(copy)});
    EXPECT_EQ(userEntries().size(), 1u);
}

TEST_F(LoginItems, ACopyThatIsGoneIsNotAdded) {
    NSString const copy = pathString(m_folder.path("gone/Mirror Frame.app"));
    add(copy);
    EXPECT_EQ(m_complaints.lines, Lines{"ERROR: Could not add as Login Item."});
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_TRUE(userEntries().empty());
}

TEST_F(LoginItems, AListThatCannotBeWrittenIsTold) {
    NSString const copy = makeCopy("copy");
    addEntry("a.desktop", desktopEntry("/bin/true"));
    select({copy});
    m_folder.makeFile("config/framekeeper/Preferences/loginwindow.plist", "damaged");
    m_controller.addToAutoLaunchAction_(nil);
    EXPECT_EQ(m_complaints.lines, Lines{"ERROR: Could not add as Login Item."});
    EXPECT_EQ(m_complaints.beeps, 1);
    std::string const why = m_folder.path("config/framekeeper/Preferences/loginwindow.plist") + ": The file is damaged";
    EXPECT_EQ(text(m_controller.notice()), "The login items could not be changed: " + why);
    EXPECT_EQ(userEntries().size(), 1u);
    m_controller.syncIsAutolaunched();
    EXPECT_EQ(m_complaints.lines.back(), "Error: CFPreferencesSynchronize");
    EXPECT_EQ(text(m_controller.loginItemsProblem()), why);
    EXPECT_EQ(text(m_controller.notice()), "The login items could not be read: " + why);
    EXPECT_EQ(m_complaints.beeps, 2);
    EXPECT_EQ(listed().size(), 1u);
}

TEST_F(LoginItems, AListThatCannotBeReadIsToldInTheWindowUntilItCanBe) {
    InGerman const german;
    std::string const folder = m_folder.makeFile("config/autostart", "no folder");
    m_controller.syncIsAutolaunched();
    std::string const why = folder + ": Kein Ordner";
    EXPECT_EQ(text(m_controller.notice()), "Die Anmeldeobjekte waren nicht lesbar: " + why);
    EXPECT_FALSE(m_controller.noticeOffersUndo());
    std::filesystem::remove(folder);
    m_controller.syncIsAutolaunched();
    EXPECT_TRUE(m_controller.loginItemsProblem() == nil);
}

TEST_F(LoginItems, ASelectedEntryIsRemovedAndTheOthersStay) {
    NSString const copy = makeCopy("copy");
    addEntry("a.desktop", desktopEntry("/bin/true"));
    addEntry("b.desktop", desktopEntry("\"" + text(copy) + "/Contents/Linux/Mirror Frame\" --hidden"));
    remove(copy);
    EXPECT_EQ(userEntries().size(), 1u);
    EXPECT_EQ(userEntries()["a.desktop"], desktopEntry("/bin/true"));
    EXPECT_FALSE(isLoginItem(copy));
    EXPECT_EQ(m_complaints.lines, Lines());
}

TEST_F(LoginItems, AnEntryOfTheSystemIsHiddenByOneOfTheUser) {
    NSString const copy = makeCopy("copy");
    addSystemEntry("mirror.desktop", desktopEntry("\"" + text(copy) + "/Contents/Linux/Mirror Frame\""));
    remove(copy);
    EXPECT_FALSE(isLoginItem(copy));
    EXPECT_NE(userEntries()["mirror.desktop"].find("Hidden=true"), std::string::npos);
    EXPECT_EQ(m_complaints.lines, Lines());
}

TEST_F(LoginItems, WritingTheListOfBeforeRestoresTheVeryEntry) {
    NSString const copy = makeCopy("copy");
    std::string const entry = desktopEntry("\"" + text(copy) + "/Contents/Linux/Mirror Frame\"", "X-Other=kept\n");
    addEntry("b.desktop", entry);
    addSystemEntry("mirror.desktop", desktopEntry("/bin/true"));
    select({copy});
    NSArray const before = m_controller.allAutolaunchItems();
    EXPECT_TRUE(m_controller.writeAllAutolaunchItems_(NSArray::array()));
    m_controller.syncIsAutolaunched();
    EXPECT_EQ(listed(), Lines());
    EXPECT_TRUE(m_controller.writeAllAutolaunchItems_(before));
    m_controller.syncIsAutolaunched();
    EXPECT_TRUE(m_controller.allAutolaunchItems().isEqual_(before));
    EXPECT_EQ(userEntries(), (std::map<std::string, std::string>{{"b.desktop", entry}}));
}

TEST_F(LoginItems, NothingHappensUnlessOneRecordIsSelected) {
    NSString const one = makeCopy("one");
    NSString const other = makeCopy("other");
    addEntry("a.desktop", desktopEntry("\"" + text(one) + "/Contents/Linux/Mirror Frame\""));
    select({one, other});
    std::map<std::string, std::string> const before = userEntries();
    m_controller.unAutoLaunchAction_(nil);
    m_controller.addToAutoLaunchAction_(nil);
    selectKnown({});
    m_controller.unAutoLaunchAction_(nil);
    m_controller.addToAutoLaunchAction_(nil);
    EXPECT_EQ(userEntries(), before);
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(LoginItems, AnEntryOfAnEarlierReadIsNotInTheListAnyMore) {
    NSString const copy = makeCopy("copy");
    add(copy);
    select({copy});
    std::map<std::string, std::string> const before = userEntries();
    m_controller.syncIsAutolaunched();
    m_controller.unAutoLaunchAction_(nil);
    EXPECT_EQ(m_complaints.lines, Lines{"Item is not auto-launched."});
    EXPECT_EQ(m_complaints.beeps, 1);
    EXPECT_EQ(userEntries(), before);
}

TEST_F(LoginItems, ACopyThatDoesNotStartAtLogInCannotBeRemoved) {
    remove(makeCopy("copy"));
    EXPECT_EQ(m_complaints.lines, Lines{"Item is not auto-launched."});
}

TEST_F(LoginItems, ARemovalThatCannotBeWrittenIsToldAndTheListIsReadAgain) {
    NSString const copy = makeCopy("copy");
    add(copy);
    select({copy});
    addEntry("new.desktop", desktopEntry("/bin/true"));
    m_folder.makeFile("config/framekeeper/Preferences/loginwindow.plist", "damaged");
    m_controller.unAutoLaunchAction_(nil);
    EXPECT_EQ(m_complaints.lines, (Lines{"Could remove auto-launch entry.", "Error: CFPreferencesSynchronize"}));
    EXPECT_TRUE(text(m_controller.notice()).starts_with("The login items could not be changed: "));
    EXPECT_EQ(listed().size(), 2u);
    EXPECT_TRUE(isLoginItem(copy));
}

TEST_F(LoginItems, AnEntryThatAnotherProgramAddedSinceTheReadIsKept) {
    NSString const copy = makeCopy("copy");
    select({copy});
    addEntry("new.desktop", desktopEntry("/bin/true"));
    m_controller.addToAutoLaunchAction_(nil);
    EXPECT_EQ(listed().size(), 2u);
    EXPECT_EQ(userEntries()["new.desktop"], desktopEntry("/bin/true"));
}

TEST_F(LoginItems, AnEntryThatAnotherProgramRemovedSinceTheReadIsNoObstacle) {
    NSString const copy = makeCopy("copy");
    add(copy);
    select({copy});
    ASSERT_EQ(::unlink(m_folder.path("config/autostart/" + userEntries().begin()->first).c_str()), 0);
    m_controller.addToAutoLaunchAction_(nil);
    EXPECT_EQ(m_complaints.lines, Lines());
    EXPECT_EQ(listed(), Lines{text(copy)});
}

TEST_F(LoginItems, ThePathOfACopyIsComparedWithoutCaseAndExpanded) {
    NSDictionary const item = NSDictionary::dictionaryWithObjectsAndKeys_({"~/Applications/MIRROR FRAME.APP", "Path"});
    EXPECT_TRUE(m_controller.writeAllAutolaunchItems_(NSArray::arrayWithObject_(item)));
    m_controller.syncIsAutolaunched();
    id const entry = m_controller.isAutolaunchedPaths().anyObject();
    EXPECT_EQ(text(entry.valueForKey_("path")), m_folder.path("home/Applications/MIRROR FRAME.APP"));
    EXPECT_TRUE(entry.valueForKey_("autolaunchItem").isEqual_(item));
}

TEST_F(LoginItems, TheFirstEntryOfACopyIsFoundByItsPathAsItStands) {
    NSDictionary const first = NSDictionary::dictionaryWithObjectsAndKeys_({"~/mirror frame.app", "Path"});
    NSArray const entries = NSArray::arrayWithObjects_(
        {"no dictionary", NSDictionary::dictionary(),
         NSDictionary::dictionaryWithObjectsAndKeys_({NSNumber::numberWithInt_(1), "Path"}),
         NSDictionary::dictionaryWithObjectsAndKeys_({"", "Path"}),
         NSDictionary::dictionaryWithObjectsAndKeys_({"/a/Mirror Frame.app/Contents", "Path"}), first,
         NSDictionary::dictionaryWithObjectsAndKeys_({"/b/Mirror Frame.app", "Path"})});
    EXPECT_TRUE(isSame(m_controller.autoLaunchedApplicationsAnyMirrorFrameEntry_(entries), first));
    EXPECT_TRUE(m_controller.hasAutoLaunchedApplicationsEntry_(entries));
    EXPECT_FALSE(m_controller.hasAutoLaunchedApplicationsEntry_(NSArray::array()));
    EXPECT_TRUE(m_controller.autoLaunchedApplicationsAnyMirrorFrameEntry_(nil) == nil);
}

TEST_F(LoginItems, AListOfAnotherClassIsNotWrittenOver) {
    NSString const copy = makeCopy("copy");
    std::string const file =
        m_folder.makeFile("config/framekeeper/Preferences/loginwindow.plist",
                          "<plist version=\"1.0\"><dict><key>AutoLaunchedApplicationDictionary</key>"
                          "<dict><key>Path</key><string>/a/Mirror Frame.app</string></dict></dict></plist>");
    std::string const before = mac::test::textOf(file);
    add(copy);
    EXPECT_EQ(m_controller.isAutolaunchedPaths().count(), 0u);
    EXPECT_EQ(m_complaints.lines, Lines{"ERROR: Could not add as Login Item."});
    EXPECT_EQ(mac::test::textOf(file), before);
    EXPECT_TRUE(userEntries().empty());
}

TEST_F(LoginItems, AreManagedByHandInTheSettings) {
    mac::test::Desktop const desktop;
    EnvironmentVariable const path("PATH", desktop.folder.makeFolder("bin"));
    makeProgram(desktop, "xfce4-settings-manager");
    makeProgram(desktop, "xfce4-session-settings");
    m_controller.showAccountsAction_(nil);
    Lines started = desktop.lines(2);
    std::ranges::sort(started);
    EXPECT_EQ(started, (Lines{"xfce4-session-settings", "xfce4-settings-manager"}));
    EXPECT_EQ(m_complaints.lines, Lines());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(LoginItems, TakeEffectOnceTheDesktopIsAskedToLogOut) {
    mac::test::Desktop const desktop;
    EnvironmentVariable const path("PATH", desktop.folder.makeFolder("bin"));
    EnvironmentVariable const current("XDG_CURRENT_DESKTOP", "LXQt");
    makeProgram(desktop, "lxqt-leave");
    m_controller.logOutAction_(nil);
    EXPECT_EQ(desktop.lines(1), Lines{"lxqt-leave"});
    EXPECT_EQ(m_complaints.lines, Lines());
    EXPECT_EQ(m_complaints.beeps, 0);
}

TEST_F(LoginItems, ANilControllerDoesNothing) {
    AppController const controller = nil;
    EXPECT_TRUE(controller.readAllAutolaunchItems() == nil);
    EXPECT_FALSE(controller.writeAllAutolaunchItems_(NSArray::array()));
    controller.addToAutoLaunchAction_(nil);
    controller.unAutoLaunchAction_(nil);
    controller.showAccountsAction_(nil);
    controller.logOutAction_(nil);
    EXPECT_EQ(m_complaints.beeps, 0);
}

} // namespace framekeeper::test
