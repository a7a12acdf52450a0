#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(ToolbarItems, AreReadAnewAndReplacedWhole) {
    AppController const controller = makeController();
    NSSet const before = NSSet::setWithObject_("an entry of before");
    controller.setIsInToolbarPaths_(before);
    controller.syncIsInToolbar();
    ASSERT_FALSE(controller.isInToolbarPaths() == nil);
    EXPECT_FALSE(isSame(controller.isInToolbarPaths(), before));
    EXPECT_EQ(controller.isInToolbarPaths().count(), 0U);
}

TEST(ToolbarItems, LeaveTheInventoryAsItIsWhenTheyAreRead) {
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.setPaths_(records);
    controller.syncIsInToolbar();
    EXPECT_TRUE(isSame(controller.paths(), records));
}

TEST(ToolbarItems, OfANilControllerAreNone) {
    AppController const controller = nil;
    controller.syncIsInToolbar();
    EXPECT_TRUE(controller.isInToolbarPaths() == nil);
}

} // namespace
} // namespace framekeeper::test
