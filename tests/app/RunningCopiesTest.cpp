#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(RunningCopies, AreReadAnewAndReplacedWhole) {
    AppController const controller = makeController();
    NSSet const before = NSSet::setWithObject_("an entry of before");
    controller.setIsRunningPaths_(before);
    controller.syncIsRunningPaths();
    ASSERT_FALSE(controller.isRunningPaths() == nil);
    EXPECT_FALSE(isSame(controller.isRunningPaths(), before));
    EXPECT_EQ(controller.isRunningPaths().count(), 0U);
}

TEST(RunningCopies, LeaveTheInventoryAsItIsWhenTheyAreRead) {
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.setPaths_(records);
    controller.syncIsRunningPaths();
    EXPECT_TRUE(isSame(controller.paths(), records));
}

TEST(RunningCopies, OfANilControllerAreNone) {
    AppController const controller = nil;
    controller.syncIsRunningPaths();
    EXPECT_TRUE(controller.isRunningPaths() == nil);
}

} // namespace
} // namespace framekeeper::test
