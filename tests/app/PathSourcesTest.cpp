#include "tests/app/PathSources.h"

namespace framekeeper::test {

TEST_P(PathSources, ForgetWhatTheyNoLongerHoldWhenTheyAreRead) {
    TemporaryFolder const folder;
    NSString const path = makeCopy(folder, "a");
    m_controller.setValue_forKey_(NSSet::setWithObject_(entry(path, GetParam().objectKey, "an item of before")),
                                  m_pathsKey);
    m_controller.reSync();
    ASSERT_FALSE(recordOf(m_controller, path) == nil);
    (m_controller.*GetParam().sync)();
    EXPECT_FALSE(m_controller.valueForKey_(m_pathsKey) == nil) << "a source that was read is a set";
    m_controller.reSync();
    EXPECT_TRUE(recordOf(m_controller, path) == nil);
}

TEST_P(PathSources, LeaveTheInventoryAsItIsWhenTheyAreRead) {
    NSMutableSet const records = NSMutableSet::set();
    m_controller.setPaths_(records);
    (m_controller.*GetParam().sync)();
    EXPECT_TRUE(isSame(m_controller.paths(), records));
}

TEST_P(PathSources, OfANilControllerAreNil) {
    AppController const controller = nil;
    (controller.*GetParam().sync)();
    EXPECT_TRUE(controller.valueForKey_(m_pathsKey) == nil);
}

} // namespace framekeeper::test
