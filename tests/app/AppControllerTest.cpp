#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/objects/NSValueTransformer.h"
#include "platform/foundation/objects/Weak.h"
#include "tests/app/Controller.h"
#include <gtest/gtest.h>

namespace framekeeper::test {
namespace {

TEST(AppController, IsFoundByItsName) {
    EXPECT_TRUE(isSame(NSClassFromString("AppController"), classOf<AppController>()));
}

TEST(AppController, RegistersItsTransformersBeforeItsFirstInstance) {
    AppController const controller = makeController();
    EXPECT_EQ(text(NSValueTransformer::valueTransformerForName_("BOOLToStringTransformer").class_()),
              "BOOLToStringTransformer");
    EXPECT_EQ(text(NSValueTransformer::valueTransformerForName_("BOOLToColorTransformer").class_()),
              "BOOLToColorTransformer");
}

TEST(AppController, MakesItsQueryWhenItIsInitialised) {
    NSMetadataQuery const query = makeController().query();
    EXPECT_EQ(text(query.predicate().predicateFormat()),
              "kMDItemKind == \"Application\" AND kMDItemFSName == \"Mirror Frame.app\"");
    ASSERT_EQ(query.searchScopes().count(), 1U);
    EXPECT_EQ(text(query.searchScopes().objectAtIndex_(0)), NSMetadataQueryLocalComputerScope);
    EXPECT_EQ(query.notificationBatchingInterval(), 0.5);
    EXPECT_FALSE(query.isStarted());
}

TEST(AppController, FollowsTheStartAndTheProgressOfItsOwnQueryAlone) {
    AppController const controller = makeController();
    auto const isInventoryMadeAfter = [&](NSString const& name, NSMetadataQuery const& query) {
        controller.setPaths_(nil);
        NSNotificationCenter::defaultCenter().postNotificationName_object_(name, query);
        return controller.paths() != nil;
    };
    EXPECT_TRUE(isInventoryMadeAfter(NSMetadataQueryDidStartGatheringNotification, controller.query()));
    EXPECT_TRUE(isInventoryMadeAfter(NSMetadataQueryGatheringProgressNotification, controller.query()));
    EXPECT_FALSE(isInventoryMadeAfter(NSMetadataQueryDidFinishGatheringNotification, controller.query()));
    EXPECT_FALSE(isInventoryMadeAfter(NSMetadataQueryDidUpdateNotification, controller.query()));
    NSMetadataQuery const other = NSMetadataQuery::alloc().init();
    EXPECT_FALSE(isInventoryMadeAfter(NSMetadataQueryDidStartGatheringNotification, other));
    EXPECT_FALSE(isInventoryMadeAfter(NSMetadataQueryGatheringProgressNotification, other));
}

TEST(AppController, InitialisedFromNilIsNil) { EXPECT_TRUE(AppController(nil).init() == nil); }

TEST(AppController, EndsTheProgramWithItsLastWindow) {
    EXPECT_TRUE(makeController().applicationShouldTerminateAfterLastWindowClosed_(nil));
    EXPECT_FALSE(AppController(nil).applicationShouldTerminateAfterLastWindowClosed_(nil));
}

TEST(AppController, NeitherStopsItsQueryNorIsToldOfItWhenItHasGone) {
    AppController controller = makeController();
    NSMetadataQuery const query = controller.query();
    Weak<AppController> const weak(controller);
    controller = nil;
    EXPECT_TRUE(weak.load() == nil);
    NSNotificationCenter::defaultCenter().postNotificationName_object_(NSMetadataQueryDidStartGatheringNotification,
                                                                       query);
    EXPECT_FALSE(query.isStopped());
}

TEST(AppController, LetsItsQueryGoWhenItGoes) {
    AppController controller = makeController();
    Weak<NSMetadataQuery> const query(controller.query());
    controller = nil;
    EXPECT_TRUE(query.load() == nil);
}

TEST(AppController, AnswersTheActionsThatExistAndNoOthers) {
    AppController const controller = makeController();
    EXPECT_TRUE(controller.respondsToSelector_("scanAction:"));
    EXPECT_TRUE(controller.respondsToSelector_("stopAction:"));
    EXPECT_FALSE(controller.respondsToSelector_("emptyTrashAction:"));
}

} // namespace
} // namespace framekeeper::test
