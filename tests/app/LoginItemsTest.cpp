#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(LoginItems, AreReadAnewAndReplacedWhole) {
    AppController const controller = makeController();
    NSSet const before = NSSet::setWithObject_("an entry of before");
    controller.setIsAutolaunchedPaths_(before);
    controller.syncIsAutolaunched();
    ASSERT_FALSE(controller.isAutolaunchedPaths() == nil);
    EXPECT_FALSE(isSame(controller.isAutolaunchedPaths(), before));
    EXPECT_EQ(controller.isAutolaunchedPaths().count(), 0U);
}

TEST(LoginItems, LeaveTheInventoryAsItIsWhenTheyAreRead) {
    AppController const controller = makeController();
    NSMutableSet const records = NSMutableSet::set();
    controller.setPaths_(records);
    controller.syncIsAutolaunched();
    EXPECT_TRUE(isSame(controller.paths(), records));
}

TEST(LoginItems, OfANilControllerAreNone) {
    AppController const controller = nil;
    controller.syncIsAutolaunched();
    EXPECT_TRUE(controller.isAutolaunchedPaths() == nil);
}

} // namespace
} // namespace framekeeper::test
