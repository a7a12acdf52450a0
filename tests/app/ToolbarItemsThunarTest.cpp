#include "app/AppControllerBody.h"
#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include "tests/app/Controller.h"
#include "tests/platform/desktop/ThunarDesktop.h"
#include "tests/support/DiskContents.h"
#include <vector>

namespace framekeeper::test {
namespace {

// The toolbar items in a real file browser, whose list of places is read as assistive technology reads it.
using ToolbarItemsOfThunar = mac::test::ThunarDesktop;

TEST_F(ToolbarItemsOfThunar, LeaveItsListWhenTheyAreRemoved) {
    std::string const copy = m_folder.makeBundle("copies/Mirror Frame.app", "");
    std::string const rest = fileURIOfPath(m_folder.makeFolder("Stays")) + "\n";
    m_folder.makeFile("config/gtk-3.0/bookmarks", rest + fileURIOfPath(copy) + " The Companion\n");
    ASSERT_TRUE(m_browser.openFolders({m_folder.makeFolder("shown")}).isDone());
    ASSERT_TRUE(showsElement("table cell The Companion"));
    std::vector<ProcessIdentity> const before = fileBrowserProcesses();

    // It gives the browser all the time that it takes to quit.
    AppController const controller = adopt<AppController>([](NSTimeInterval) {
                                         mac::test::waitUntil([] { return fileBrowserProcesses().empty(); });
                                     }).init();
    NSArrayController const selection = NSArrayController::alloc().init();
    controller.setValue_forKey_(selection, "pathsArrayController");
    controller.syncIsInToolbar();
    controller.reSync();
    selection.setContent_(controller.paths());
    ASSERT_TRUE(selection.setSelectedObjects_(NSArray::arrayWithObject_(recordOf(controller, pathString(copy)))));
    std::vector<std::string> log;
    LogListener const listener([&](NSString const& line) { log.push_back(line.UTF8String()); });
    controller.unToolbarAction_(nil);

    EXPECT_EQ(log, std::vector<std::string>());
    EXPECT_EQ(mac::test::textOf(m_folder.path("config/gtk-3.0/bookmarks")), rest);
    std::vector<ProcessIdentity> const after = fileBrowserProcesses();
    ASSERT_EQ(after.size(), 1U);
    EXPECT_FALSE(after[0] == before.at(0)) << "it was started again";
    ASSERT_TRUE(m_browser.openFolders({m_folder.makeFolder("others")}).isDone());
    EXPECT_TRUE(showsElement("table cell Stays"));
    EXPECT_TRUE(mac::test::VirtualSession::hidesElement("table cell The Companion"));
}

} // namespace
} // namespace framekeeper::test
