#include "app/Panes.h"
#include "app/CopyDetails.h"
#include "app/ScanChanges.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/app/Controller.h"
#include <cstdlib>
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(Panes, RemembersWhetherTheDetailsAreShown) {
    NSUserDefaults const defaults = NSUserDefaults::standardUserDefaults();
    defaults.removeObjectForKey_("ShowsDetails");
    Panes const panes = makeController().panes();
    EXPECT_FALSE(panes.showsDetails());
    panes.toggleDetails_(nil);
    EXPECT_TRUE(panes.showsDetails());
    EXPECT_TRUE(makeController().panes().showsDetails());
    panes.toggleDetails_(nil);
    EXPECT_FALSE(makeController().panes().showsDetails());
    EXPECT_FALSE(panes.showsUnreadableFolders());
    panes.toggleUnreadableFolders_(nil);
    EXPECT_TRUE(panes.showsUnreadableFolders());
    EXPECT_FALSE(makeController().panes().showsUnreadableFolders());
    defaults.removeObjectForKey_("ShowsDetails");
}

TEST(Panes, KeepTheListOfFoldersUntilASearchHasReadThemAll) {
    TemporaryFolder const folder;
    ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", folder.path().c_str(), 1);
    AppController const controller = makeController();
    Panes const panes = controller.panes();
    panes.toggleUnreadableFolders_(nil);
    controller.scanAction_(nil);
    controller.scanAction_(nil);
    EXPECT_TRUE(controller.query().isGathering());
    EXPECT_TRUE(panes.showsUnreadableFolders()) << "another search has stopped the first";
    controller.stopAction_(nil);
    EXPECT_TRUE(panes.showsUnreadableFolders()) << "the search was stopped";
    controller.scanAction_(nil);
    EXPECT_TRUE(runUntil([&controller] { return !controller.query().isGathering(); }));
    EXPECT_FALSE(panes.showsUnreadableFolders());
    controller.query().stopQuery();
    ::unsetenv("FRAMEKEEPER_LOCAL_COMPUTER");
}

TEST(Panes, AnswerNothingForNil) {
    EXPECT_TRUE(Panes::of(nil) == nil);
    EXPECT_FALSE(Panes().showsDetails());
    Panes().toggleDetails_(nil);
    Panes().toggleUnreadableFolders_(nil);
    EXPECT_TRUE(AppController().panes() == nil);
    EXPECT_TRUE(AppController().details() == nil);
    EXPECT_TRUE(AppController().scanChanges() == nil);
    EXPECT_TRUE(CopyDetails().values() == nil);
    CopyDetails().compare_(nil);
    CopyDetails().stopComparing_(nil);
    EXPECT_EQ(text(ScanChanges().text()), "");
}

} // namespace
} // namespace framekeeper::test
