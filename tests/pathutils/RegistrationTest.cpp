#include "platform/files/Handles.h"
#include "platform/files/references/FSRef.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/NSValue.h"
#include "platform/foundation/text/NSString.h"
#include <gtest/gtest.h>

namespace mac::test {

TEST(PathUtilsRegistration, FillsTheOutArgumentsOfAMessage) {
    std::int32_t major = 0;
    std::int32_t minor = 0;
    std::int32_t subminor = 0;
    id("10.4.11").performSelector_withObjects_("pxParseVersionToMajor:minor:subminor:",
                                               {NSValue::valueWithPointer_(&major), NSValue::valueWithPointer_(&minor),
                                                NSValue::valueWithPointer_(&subminor)});
    EXPECT_EQ(major, 10);
    EXPECT_EQ(minor, 4);
    EXPECT_EQ(subminor, 11);
}

TEST(PathUtilsRegistration, TakesObjectsThatAreNoPointersForNull) {
    FSRef ref{};
    id const found = id("/").performSelector_withObjects_(
        "KRPathGetFSRef:getIsDirectory:traverseLink:",
        {NSValue::valueWithPointer_(&ref), NSNumber::numberWithInt_(4096), NSNumber::numberWithBool_(NO)});
    EXPECT_TRUE(as<NSNumber>(found).boolValue());
}

TEST(PathUtilsRegistration, GivesAReferenceOfAPathBySelector) {
    FSRef ref{};
    id const found = id("/").performSelector_withObject_withObject_(
        "KRPathGetFSRef:traverseLink:", NSValue::valueWithPointer_(&ref), NSNumber::numberWithBool_(NO));
    EXPECT_TRUE(as<NSNumber>(found).boolValue());
    EXPECT_TRUE(id(classOf<NSString>()).respondsToSelector_("pxUpdatePathInFinder:"));
    EXPECT_TRUE(id("/").respondsToSelector_("pxUpdatePathInFinder"));
}

TEST(PathUtilsRegistration, GivesAHandleBySelector) {
    id const handle = id(NSData::dataWithBytes_length_("abc", 3)).performSelector_("pxCreateHandle");
    ASSERT_TRUE(as<NSValue>(handle) != nil);
    id const copy = id(classOf<NSData>()).performSelector_withObject_("pxDataWithHandle:", handle);
    EXPECT_EQ(as<NSData>(copy).length(), 3U);
    DisposeHandle(reinterpret_cast<MemoryHandle>(as<NSValue>(handle).pointerValue<char*>()));
}

} // namespace mac::test
