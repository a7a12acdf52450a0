#include "platform/applescript/NSAppleScript.h"
#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSValue.h"
#include "platform/processes/Processes.h"
#include <bit>
#include <gtest/gtest.h>

namespace mac::test {

TEST(ScriptingRegistration, BoxesASerialNumberByAClassMethod) {
    ProcessSerialNumber const psn{.highLongOfPSN = 1, .lowLongOfPSN = 2};
    id const numbers = classOf<NSNumber>();
    id const boxed = numbers.performSelector_withObject_("KRAProcessSerialNumber:", NSValue::valueWithPointer_(&psn));
    EXPECT_EQ(as<NSNumber>(boxed).unsignedLongLongValue(), std::bit_cast<std::uint64_t>(psn));
    EXPECT_TRUE(as<NSNumber>(numbers.performSelector_("KRAProcessSerialNumberGetCurrent")) != nil);
}

TEST(ScriptingRegistration, MakesAnEventOfACodeByAClassMethod) {
    id const code = NSNumber::numberWithUnsignedInt_(FourCharCode("fupd").value());
    id const descriptors = classOf<NSAppleEventDescriptor>();
    NSAppleEventDescriptor const event =
        as<NSAppleEventDescriptor>(descriptors.performSelector_withObject_("pxFinderAppleEventWithEventID:", code));
    EXPECT_EQ(event.eventID(), FourCharCode("fupd"));
}

TEST(ScriptingRegistration, TurnsAReferenceIntoAPathByAClassMethod) {
    FSRef ref{};
    id const address = NSValue::valueWithPointer_(&ref);
    ASSERT_TRUE(as<NSNumber>(id("/usr").performSelector_withObject_("KRCPathGetFSRef:", address)).boolValue());
    id const path = id(classOf<NSString>()).performSelector_withObject_("KRCPathWithFSRef:", address);
    EXPECT_TRUE(path.isEqual_("/usr"));
}

TEST(ScriptingRegistration, CallsAHandlerWithAnArrayOfParameters) {
    NSAppleScript const script =
        NSAppleScript::alloc().initWithSource_("on joined(a, b)\nreturn a & \"+\" & b\nend joined\n");
    NSString error;
    id const result = script.performSelector_withObjects_(
        "pxExecuteHandler:error:withParameters:",
        {"joined", NSValue::valueWithPointer_(&error), NSArray::arrayWithObjects_({"x", "y"})});
    EXPECT_TRUE(result.isEqual_("x+y"));
    EXPECT_TRUE(error == nil);
}

} // namespace mac::test
