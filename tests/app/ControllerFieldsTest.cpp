#include "platform/foundation/objects/KeyValueObserving.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

// Counts the changes it is told of.
struct Observer : Handle<Observer, NSObject> {
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass() { return {.name = "FieldObserver", .superclass = classOf<NSObject>()}; }
};

class Observer::Body : public ObjectBody {
public:
    void observeValueForKeyPath(NSString const&, id const&, NSDictionary const&, void*) override { ++changes; }
    int changes{0};
};

char const* const Keys[]{"allAutolaunchItems", "allToolbarItems",   "isRunningPaths", "isAutolaunchedPaths",
                         "isInToolbarPaths",   "isOnHarddiskPaths", "paths",          "query"};

id valueFor(std::string const& key) {
    if (key == "allAutolaunchItems" || key == "allToolbarItems") return NSArray::arrayWithObject_("item");
    if (key == "isOnHarddiskPaths" || key == "paths") return NSMutableSet::set();
    if (key == "query") return NSMetadataQuery::alloc().init();
    return NSSet::set();
}

class ControllerField : public testing::TestWithParam<char const*> {
protected:
    NSString m_key = NSString::stringWithUTF8String_(GetParam());
    AppController m_controller = makeController();
    id m_value = valueFor(GetParam());
};

TEST_P(ControllerField, IsSetAndReadThroughKeyValueCoding) {
    m_controller.setValue_forKey_(m_value, m_key);
    EXPECT_TRUE(isSame(m_controller.valueForKey_(m_key), m_value));
    m_controller.setValue_forKey_(nil, m_key);
    EXPECT_TRUE(m_controller.valueForKey_(m_key) == nil);
}

TEST_P(ControllerField, TellsItsObserversOnceOfEachSettingAlsoOfTheSameObject) {
    Observer const observer = adopt<Observer>();
    m_controller.addObserver_forKeyPath_options_context_(observer, m_key, 0, nullptr);
    m_controller.setValue_forKey_(m_value, m_key);
    EXPECT_EQ(bodyOf(observer)->changes, 1);
    m_controller.setValue_forKey_(m_value, m_key);
    EXPECT_EQ(bodyOf(observer)->changes, 2);
    m_controller.removeObserver_forKeyPath_(observer, m_key);
}

INSTANTIATE_TEST_SUITE_P(OfTheController, ControllerField, testing::ValuesIn(Keys),
                         [](testing::TestParamInfo<char const*> const& field) { return field.param; });

TEST(ControllerFields, TellNothingWhenAFieldChangesInPlace) {
    AppController const controller = makeController();
    Observer const observer = adopt<Observer>();
    controller.setPaths_(NSMutableSet::set());
    controller.addObserver_forKeyPath_options_context_(observer, "paths", 0, nullptr);
    controller.paths().addObject_("record");
    EXPECT_EQ(bodyOf(observer)->changes, 0);
}

TEST(ControllerFields, HaveSettersThatReadBackTheSameObject) {
    AppController const controller = makeController();
    NSArray const items = NSArray::arrayWithObject_("item");
    NSSet const entries = NSSet::setWithObject_("entry");
    NSMutableSet const paths = NSMutableSet::set();
    NSMetadataQuery const query = NSMetadataQuery::alloc().init();
    controller.setAllAutolaunchItems_(items);
    controller.setAllToolbarItems_(items);
    controller.setIsRunningPaths_(entries);
    controller.setIsAutolaunchedPaths_(entries);
    controller.setIsInToolbarPaths_(entries);
    controller.setIsOnHarddiskPaths_(paths);
    controller.setPaths_(paths);
    controller.setQuery_(query);
    EXPECT_TRUE(isSame(controller.allAutolaunchItems(), items));
    EXPECT_TRUE(isSame(controller.allToolbarItems(), items));
    EXPECT_TRUE(isSame(controller.isRunningPaths(), entries));
    EXPECT_TRUE(isSame(controller.isAutolaunchedPaths(), entries));
    EXPECT_TRUE(isSame(controller.isInToolbarPaths(), entries));
    EXPECT_TRUE(isSame(controller.isOnHarddiskPaths(), paths));
    EXPECT_TRUE(isSame(controller.paths(), paths));
    EXPECT_TRUE(isSame(controller.query(), query));
}

TEST(ControllerFields, OfANilControllerAreNilAndCannotBeSet) {
    AppController const controller = nil;
    controller.setPaths_(NSMutableSet::set());
    controller.setQuery_(NSMetadataQuery::alloc().init());
    EXPECT_TRUE(controller.paths() == nil);
    EXPECT_TRUE(controller.query() == nil);
    EXPECT_TRUE(controller.pathsArrayController() == nil);
    EXPECT_TRUE(controller.pathsTableView() == nil);
    EXPECT_TRUE(controller.window() == nil);
}

TEST(ControllerFields, RefuseAnOutletOfAnotherClass) {
    AppController const controller = makeController();
    controller.setValue_forKey_("no window", "window");
    EXPECT_TRUE(controller.window() == nil);
}

} // namespace
} // namespace framekeeper::test
