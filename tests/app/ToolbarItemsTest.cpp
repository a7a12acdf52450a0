#include "app/AppControllerBody.h"
#include "platform/desktop/session/Patience.h"
#include "platform/preferences/CFPreferences.h"
#include "tests/app/Complaints.h"
#include "tests/app/PathSources.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/DiskContents.h"
#include "tests/support/TestRun.h"
#include <algorithm>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vector>

namespace framekeeper::test {
namespace {

using mac::test::ChildProcess;
using mac::test::fakeFileBrowser;
using mac::test::textOf;
using Lines = std::vector<std::string>;

NSDictionary itemOfData(std::initializer_list<id> objectsAndKeys) {
    return NSDictionary::dictionaryWithObject_forKey_(NSDictionary::dictionaryWithObjectsAndKeys_(objectsAndKeys),
                                                      "file-data");
}

NSDictionary itemOf(NSString const& text, int type) {
    return itemOfData({text, "_CFURLString", mac::test::number(type), "_CFURLStringType"});
}

class ToolbarItems : public mac::test::OwnProcesses {
protected:
    void SetUp() override {
        OwnProcesses::SetUp();
        m_controller.setValue_forKey_(m_selection, "pathsArrayController");
    }
    void TearDown() override {
        // Ends the browsers that do not end by themselves; only the test's own are on its bus.
        for (ProcessIdentity const& process : fileBrowserProcesses())
            ::kill(process.pid, SIGKILL);
    }

    std::string uri(std::string const& name) const { return "file://" + m_desktop.folder.path() + "/" + name; }
    std::string const& bookmarks(std::string const& contents) const {
        m_desktop.folder.makeFile("config/gtk-3.0/bookmarks", contents);
        return m_bookmarks;
    }
    // Sets the list of the Finder's domain; what has no native form lies in the domain's file.
    static void setItems(NSArray const& items) {
        CFPreferencesSetValue("FXToolbarItems", items, "com.apple.finder", kCFPreferencesCurrentUser,
                              kCFPreferencesAnyHost);
        ASSERT_TRUE(CFPreferencesSynchronize("com.apple.finder", kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
    }
    Lines paths() const {
        Lines paths;
        for (id const& entry : m_controller.isInToolbarPaths().allObjects())
            paths.push_back(text(entry.valueForKey_("path")));
        std::ranges::sort(paths);
        return paths;
    }
    // Reads the items anew and selects the records of those paths below the folder.
    void select(Lines const& names) const {
        m_controller.syncIsInToolbar();
        m_controller.reSync();
        NSMutableArray const records = NSMutableArray::array();
        for (std::string const& name : names)
            records.addObject_(recordOf(m_controller, pathString(m_desktop.folder.path(name))));
        m_selection.setContent_(m_controller.paths());
        ASSERT_TRUE(m_selection.setSelectedObjects_(records));
    }
    // A controller that gives the browser all the time that it takes to quit.
    void waitForTheEndOf(ChildProcess const& browser) {
        m_controller = adopt<AppController>([&browser](NSTimeInterval) { browser.waitUntilEnded(); }).init();
        m_controller.setValue_forKey_(m_selection, "pathsArrayController");
    }
    // The default application for folders quits when it is asked to.
    void installBrowser(std::string const& mode = "serve") const {
        m_desktop.install(m_desktop.fake(mode),
                          "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + m_desktop.fake("quit") + "\n");
        m_desktop.installService(m_desktop.fake(mode));
    }
    void expectReports(Lines const& lines) const {
        EXPECT_EQ(m_complaints.lines, lines);
        EXPECT_EQ(m_complaints.beeps, static_cast<int>(lines.size()));
    }

    // On a busy computer a browser starts later than a user would wait for it.
    Patience const m_patience{std::chrono::minutes(5)};
    mac::test::Desktop const m_desktop{};
    std::string const m_bookmarks{m_desktop.folder.path("config/gtk-3.0/bookmarks")};
    AppController m_controller = makeController();
    NSArrayController m_selection = NSArrayController::alloc().init();
    Complaints m_complaints{};
};

TEST_F(ToolbarItems, AreNoneWithoutPlaces) {
    m_controller.setIsInToolbarPaths_(NSSet::setWithObject_("an entry of before"));
    m_controller.syncIsInToolbar();
    ASSERT_FALSE(m_controller.allToolbarItems() == nil);
    EXPECT_EQ(m_controller.allToolbarItems().count(), 0U);
    EXPECT_EQ(m_controller.isInToolbarPaths().count(), 0U);
    EXPECT_EQ(m_controller.readAllToolbarItems().count(), 0U);
    expectReports({});
}

TEST_F(ToolbarItems, AreThePlacesThatPointAtACopy) {
    bookmarks("file:///a/Mirror%20Frame.app\nfile:///%C3%BC%20b/mirror%20frame.APP/ label\nfile:///other\n");
    m_controller.syncIsInToolbar();
    EXPECT_EQ(m_controller.allToolbarItems().count(), 3U);
    EXPECT_EQ(paths(), (Lines{"/a/Mirror Frame.app", "/\xC3\xBC b/mirror frame.APP"}));
    for (id const& entry : m_controller.isInToolbarPaths().allObjects()) {
        EXPECT_EQ(as<NSDictionary>(entry).count(), 2U);
        EXPECT_NE(m_controller.allToolbarItems().indexOfObjectIdenticalTo_(entry.valueForKey_("toolbarItem")),
                  NSNotFound);
    }
}

TEST_F(ToolbarItems, AreReadByTheTypeOfTheirText) {
    setItems(NSArray::arrayWithObjects_({
        itemOf("/plain/Mirror Frame.app/", 0),
        itemOf("file:///url/Mirror%20Frame.app", 15),
        itemOf("http://host/web/Mirror%20Frame.app", 15),
        itemOf("file:///bad url/Mirror Frame.app", 15),
        itemOf("/other/Mirror Frame.app", 1),
        itemOf("", 0),
        itemOf("", 15),
        itemOfData({"/no type/Mirror Frame.app", "_CFURLString"}),
        itemOfData({mac::test::number(0), "_CFURLStringType"}),
        itemOfData({mac::test::number(1), "_CFURLString", mac::test::number(0), "_CFURLStringType"}),
        itemOfData({"/a/Mirror Frame.app", "_CFURLString", "0", "_CFURLStringType"}),
        NSDictionary::dictionaryWithObject_forKey_("text", "file-data"),
        NSDictionary::dictionary(),
        "text",
    }));
    m_controller.syncIsInToolbar();
    EXPECT_EQ(m_controller.allToolbarItems().count(), 14U);
    EXPECT_EQ(paths(), (Lines{"/plain/Mirror Frame.app", "/url/Mirror Frame.app", "/web/Mirror Frame.app"}));
}

TEST_F(ToolbarItems, AreReadWhereNotAllCanBe) {
    bookmarks("file:///a/Mirror%20Frame.app\n");
    m_desktop.folder.makeFile("data/user-places.xbel", "<xbel>");
    m_controller.syncIsInToolbar();
    EXPECT_EQ(paths(), Lines{"/a/Mirror Frame.app"});
    expectReports({"Error: CFPreferencesSynchronize"});
    std::string const file = m_desktop.folder.path("data/user-places.xbel");
    EXPECT_EQ(text(m_controller.notice()),
              "The places could not be read: " + file +
                  ": The places in it cannot be used as they are written: Premature end of document.");
}

TEST_F(ToolbarItems, AreMarkedInTheRecords) {
    NSString const copy = pathString(m_desktop.folder.makeBundle(
        "a/Mirror Frame.app", mac::test::informationFile(CompanionIdentifier, "2.1", "210")));
    bookmarks(uri("a/Mirror%20Frame.app") + "\nfile:///gone/Mirror%20Frame.app\n");
    m_controller.syncIsInToolbar();
    EXPECT_TRUE(m_controller.paths() == nil) << "only the source is read";
    m_controller.reSync();
    EXPECT_EQ(m_controller.paths().count(), 2U);
    EXPECT_TRUE(flag(recordOf(m_controller, copy), "isInToolbar"));
    EXPECT_TRUE(flag(recordOf(m_controller, copy), "exists"));
    EXPECT_FALSE(flag(recordOf(m_controller, "/gone/Mirror Frame.app"), "exists"));
}

TEST_F(ToolbarItems, AreWrittenWhole) {
    bookmarks("file:///a\nfile:///b\n");
    NSMutableArray const items = NSMutableArray::arrayWithArray_(m_controller.readAllToolbarItems());
    items.removeObjectAtIndex_(0);
    items.addObject_(itemOf("/plain", 0));
    EXPECT_TRUE(m_controller.writeAllToolbarItems_(items));
    EXPECT_EQ(textOf(m_bookmarks), "file:///b\n");
    EXPECT_TRUE(m_controller.readAllToolbarItems().isEqual_(items));
}

TEST_F(ToolbarItems, AreRemovedAndTheBrowserStartsAgainAsItWasStarted) {
    installBrowser();
    ChildProcess const browser({fakeFileBrowser(), "serve", m_desktop.log(), "--desktop"});
    waitForTheEndOf(browser);
    ASSERT_TRUE(mac::test::waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    bookmarks(uri("a/Mirror%20Frame.app") + " A\n" + uri("b/Mirror%20Frame.app") + "\nfile:///c\n");
    select({"a/Mirror Frame.app"});
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(textOf(m_bookmarks), uri("b/Mirror%20Frame.app") + "\nfile:///c\n");
    EXPECT_EQ(paths(), Lines{m_desktop.folder.path("b/Mirror Frame.app")});
    EXPECT_EQ(m_controller.paths().count(), 1U);
    EXPECT_EQ(m_desktop.lines(),
              (Lines{"started serve --desktop", "started quit", "asked to quit", "started serve --desktop"}));
    EXPECT_EQ(fileBrowserProcesses().size(), 1U);
    expectReports({});
}

TEST_F(ToolbarItems, ComeBackWhenTheListOfBeforeIsWritten) {
    std::string const lines = "file:///c\n" + uri("a/Mirror%20Frame.app") + " A\nfile:///d\n";
    bookmarks(lines);
    select({"a/Mirror Frame.app"});
    NSArray const before = m_controller.allToolbarItems();
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(textOf(m_bookmarks), "file:///c\nfile:///d\n");
    EXPECT_TRUE(m_controller.writeAllToolbarItems_(before));
    EXPECT_EQ(textOf(m_bookmarks), lines);
}

TEST_F(ToolbarItems, AreLeftAloneUnlessJustOneIsSelected) {
    std::string const lines = uri("a/Mirror%20Frame.app") + "\n" + uri("b/Mirror%20Frame.app") + "\n";
    bookmarks(lines);
    select({"a/Mirror Frame.app", "b/Mirror Frame.app"});
    m_controller.unToolbarAction_(nil);
    select({});
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(textOf(m_bookmarks), lines);
    expectReports({});
}

TEST_F(ToolbarItems, AreNotRemovedByARecordOfAnEarlierReading) {
    std::string const line = uri("a/Mirror%20Frame.app") + "\n";
    bookmarks(line);
    select({"a/Mirror Frame.app"});
    m_controller.syncIsInToolbar();
    NSArray const items = m_controller.allToolbarItems();
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(textOf(m_bookmarks), line);
    EXPECT_TRUE(isSame(m_controller.allToolbarItems(), items)) << "nothing is read anew";
    expectReports({"Item is not in toolbar."});
}

TEST_F(ToolbarItems, AreNotRemovedWhereTheCopyHasNone) {
    bookmarks("file:///c\n");
    m_controller.setIsOnHarddiskPaths_(pathSet({pathString(m_desktop.folder.path("a/Mirror Frame.app"))}));
    select({"a/Mirror Frame.app"});
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(textOf(m_bookmarks), "file:///c\n");
    expectReports({"Item is not in toolbar."});
}

TEST_F(ToolbarItems, ThatCannotBeRemovedAreReadAnewAndTheBrowserStays) {
    installBrowser();
    ChildProcess const browser({fakeFileBrowser(), "serve", m_desktop.log()});
    ASSERT_TRUE(mac::test::waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    bookmarks(uri("a/Mirror%20Frame.app") + " A\n");
    select({"a/Mirror Frame.app"});
    bookmarks(uri("a/Mirror%20Frame.app") + " renamed\n" + uri("b/Mirror%20Frame.app") + "\n");
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(m_controller.isInToolbarPaths().count(), 2U);
    EXPECT_EQ(m_controller.paths().count(), 2U);
    EXPECT_EQ(m_desktop.lines(), Lines{"started serve"});
    expectReports({"Could remove toolbar item."});
}

TEST_F(ToolbarItems, AreRemovedAlsoWhereNoBrowserRuns) {
    installBrowser();
    bookmarks(uri("a/Mirror%20Frame.app") + "\n");
    select({"a/Mirror Frame.app"});
    m_controller.unToolbarAction_(nil);
    EXPECT_EQ(textOf(m_bookmarks), "");
    EXPECT_TRUE(m_desktop.lines().empty()) << "none is launched";
    expectReports({"Could not quit Finder."});
}

TEST_F(ToolbarItems, AreShownByABrowserThatRefusesToQuit) {
    std::vector<NSTimeInterval> pauses;
    m_controller = adopt<AppController>([&](NSTimeInterval seconds) { pauses.push_back(seconds); }).init();
    m_desktop.install(m_desktop.fake("stubborn"));
    ChildProcess const browser({fakeFileBrowser(), "stubborn", m_desktop.log()});
    ASSERT_TRUE(mac::test::waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    m_controller.quitFinderAction_(nil);
    EXPECT_EQ(pauses, std::vector<NSTimeInterval>(20, 0.2));
    EXPECT_EQ(m_desktop.lines(), Lines{"started stubborn"});
    expectReports({"Could not quit Finder."});
}

TEST_F(ToolbarItems, AreNotShownWhereTheBrowserIsGoneForGood) {
    std::string const entry = m_desktop.folder.path("data/applications/browser.desktop");
    std::string const leave =
        m_desktop.folder.makeFile("leave", "#!/bin/sh\nrm '" + entry + "'\nexec " + m_desktop.fake("quit") + "\n");
    ASSERT_EQ(::chmod(leave.c_str(), 0755), 0);
    m_desktop.install(m_desktop.fake("serve"), "Actions=Quit;\n[Desktop Action Quit]\nName=Quit\nExec=" + leave + "\n");
    ChildProcess browser({fakeFileBrowser(), "serve", m_desktop.log()});
    waitForTheEndOf(browser);
    ASSERT_TRUE(mac::test::waitUntil([] { return isFileBrowserServiceOffered() == true; }));
    m_controller.quitFinderAction_(nil);
    EXPECT_EQ(browser.wait(), 0);
    expectReports({"Could not re-launch Finder."});
}

INSTANTIATE_TEST_SUITE_P(ToolbarItems, PathSources,
                         testing::Values(PathSource{"ToolbarItems", "isInToolbarPaths", "toolbarItem",
                                                    &AppController::syncIsInToolbar}));

TEST(ToolbarItemsOfNil, AreNone) {
    AppController const controller = nil;
    controller.syncIsInToolbar();
    controller.unToolbarAction_(nil);
    controller.quitFinderAction_(nil);
    EXPECT_TRUE(controller.readAllToolbarItems() == nil);
    EXPECT_FALSE(controller.writeAllToolbarItems_(NSArray::array()));
}

} // namespace
} // namespace framekeeper::test
