#include "pathutils/PXFileManagerHandler.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/support/DiskContents.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

NSDictionary information(char const* text) {
    return NSDictionary::dictionaryWithObject_forKey_(NSString::stringWithUTF8String_(text), "Error");
}

TEST(PXFileManagerHandler, IsFoundByNameAndStartsWithoutAnError) {
    Class const cls = NSClassFromString("PXFileManagerHandler");
    ASSERT_FALSE(cls == nil);
    PXFileManagerHandler const handler = as<PXFileManagerHandler>(cls.alloc());
    ASSERT_FALSE(handler == nil);
    EXPECT_TRUE(handler.errorInfo() == nil);
}

TEST(PXFileManagerHandler, KeepsTheLastErrorAndStops) {
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    NSFileManager const manager = NSFileManager::defaultManager();
    NSDictionary const first = information("first");
    EXPECT_FALSE(handler.fileManager_shouldProceedAfterError_(manager, first));
    EXPECT_TRUE(isSame(handler.errorInfo(), first));
    id const answer = handler.performSelector_withObject_withObject_("fileManager:shouldProceedAfterError:", manager,
                                                                     information("second"));
    EXPECT_FALSE(as<NSNumber>(answer).boolValue());
    EXPECT_EQ(fileSystemBytes(as<NSString>(handler.errorInfo().objectForKey_("Error"))), "second");
    handler.fileManager_willProcessPath_(manager, "/a");
    EXPECT_FALSE(handler.errorInfo() == nil);
    handler.setErrorInfo_(nil);
    EXPECT_TRUE(handler.errorInfo() == nil);
}

TEST(PXFileManagerHandler, TellsWhyTheFileManagerFailed) {
    TemporaryFolder const folder;
    folder.makeFile("file", "contents");
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    EXPECT_FALSE(NSFileManager::defaultManager().removeFileAtPath_handler_(path(folder.path("file/below")), handler));
    EXPECT_EQ(fileSystemBytes(as<NSString>(handler.errorInfo().objectForKey_("Path"))), folder.path("file/below"));
    EXPECT_FALSE(as<NSString>(handler.errorInfo().objectForKey_("Error")) == nil);
    EXPECT_TRUE(isThere(folder.path("file")));
}

TEST(PXFileManagerHandler, NilAnswersNilAndNo) {
    PXFileManagerHandler const none = nil;
    EXPECT_FALSE(none.fileManager_shouldProceedAfterError_(NSFileManager::defaultManager(), information("x")));
    none.fileManager_willProcessPath_(nil, nil);
    none.setErrorInfo_(information("x"));
    EXPECT_TRUE(none.errorInfo() == nil);
}

} // namespace

} // namespace mac::test
