#include "app/AppController.h"
#include "app/ValueTransformers.h"
#include "platform/foundation/numbers/NSNumber.h"
#include <gtest/gtest.h>

namespace framekeeper::test {

namespace {

// The program's loader never makes a controller for these; no query runs.
AppController makeRegisteredController() { return AppController::alloc().init(); }

} // namespace

TEST(AppRegistration, MakesTheProgramsClassesKnownByName) {
    EXPECT_TRUE(isSame(NSClassFromString("AppController"), classOf<AppController>()));
    EXPECT_TRUE(isSame(NSClassFromString("BOOLToColorTransformer"), classOf<BOOLToColorTransformer>()));
    EXPECT_TRUE(isSame(NSClassFromString("BOOLToStringTransformer"), classOf<BOOLToStringTransformer>()));
    EXPECT_TRUE(NSClassFromString("NSMetadataQuery") != nil);
    EXPECT_TRUE(NSClassFromString("NSArrayController") != nil);
    EXPECT_TRUE(NSClassFromString("NSAppleScript") != nil);
}

TEST(AppRegistration, AnswersTheControllersOperationsSentBySelector) {
    AppController const controller = makeRegisteredController();
    NSMutableSet const records = NSMutableSet::set();
    controller.performSelector_withObject_("setPaths:", records);
    EXPECT_TRUE(isSame(controller.performSelector_("paths"), controller.paths()));
    controller.performSelector_withObject_withObject_("pathObjects:addPath:", records, "/nowhere/Mirror Frame.app");
    EXPECT_EQ(records.count(), 1U);
    NSMutableSet const paths = NSMutableSet::set();
    paths.addObject_("/nowhere/Mirror Frame.app");
    controller.performSelector_withObject_("setIsOnHarddiskPaths:", paths);
    controller.performSelector_("reSync");
    EXPECT_EQ(controller.paths().count(), 1U);
}

TEST(AppRegistration, AnswersATransformersOperationsSentBySelector) {
    id const colours = classOf<BOOLToColorTransformer>();
    EXPECT_FALSE(as<NSNumber>(colours.performSelector_("allowsReverseTransformation")).boolValue());
    id const texts = NSClassFromString("BOOLToStringTransformer").alloc();
    EXPECT_TRUE(texts.performSelector_withObject_("transformedValue:", NSNumber::numberWithBool_(YES)).isEqual_("Yes"));
}

} // namespace framekeeper::test
