#include "platform/applescript/NSAppleScript.h"
#include "platform/foundation/numbers/NSNumber.h"
#include <gtest/gtest.h>

namespace mac::test {

namespace {

TEST(NSAppleScript, CompilesASourceInOrder) {
    NSAppleScript const script = NSAppleScript::alloc().initWithSource_("1 + 1");
    NSDictionary error = NSDictionary::dictionary();
    EXPECT_FALSE(script.isCompiled());
    EXPECT_TRUE(script.compileAndReturnError_(&error));
    EXPECT_TRUE(script.isCompiled());
    EXPECT_TRUE(error == nil);
    EXPECT_TRUE(script.compileAndReturnError_(nullptr));
    EXPECT_EQ(script.source().UTF8String(), "1 + 1");
}

TEST(NSAppleScript, TextThatBeginsWithAMarkOfByteOrderStaysAsItIs) {
    for (std::u16string const mark : {u"\xFEFF", u"\xFFFE"}) {
        NSString const text = NSString::stringWithCodeUnits(mark + u"ab");
        NSString const source = NSString::stringWithCodeUnits(u"\"" + mark + u"ab\"");
        NSAppleScript const script = NSAppleScript::alloc().initWithSource_(source);
        EXPECT_TRUE(script.source().isEqualToString_(source));
        NSAppleEventDescriptor const result = script.executeAndReturnError_(nullptr);
        EXPECT_TRUE(result.stringValue().isEqualToString_(text));
        EXPECT_TRUE(NSAppleEventDescriptor::descriptorWithString_(text).stringValue().isEqualToString_(text));
    }
}

TEST(NSAppleScript, ReportsTheErrorsOfASource) {
    NSAppleScript const script = NSAppleScript::alloc().initWithSource_("set x to");
    NSDictionary error;
    EXPECT_FALSE(script.compileAndReturnError_(&error));
    EXPECT_FALSE(script.isCompiled());
    auto const text = [&](NSString const& key) { return as<NSString>(error.objectForKey_(key)).UTF8String(); };
    EXPECT_EQ(text(NSAppleScriptErrorMessage), "Expected expression but found end of script.");
    EXPECT_EQ(text(NSAppleScriptErrorBriefMessage), text(NSAppleScriptErrorMessage));
    EXPECT_EQ(as<NSNumber>(error.objectForKey_(NSAppleScriptErrorNumber)).intValue(), -2741);
    EXPECT_EQ(text(NSAppleScriptErrorRange), "{8, 0}");
    EXPECT_TRUE(error.objectForKey_(NSAppleScriptErrorAppName) == nil);
    EXPECT_FALSE(script.compileAndReturnError_(nullptr));
}

TEST(NSAppleScript, NilAnswersNothing) {
    NSAppleScript const none = nil;
    EXPECT_TRUE(none.initWithSource_("1") == nil);
    EXPECT_TRUE(NSAppleScript::alloc().initWithSource_(nil) == nil);
    EXPECT_TRUE(none.source() == nil);
    EXPECT_FALSE(none.isCompiled());
    EXPECT_FALSE(none.compileAndReturnError_(nullptr));
}

} // namespace

} // namespace mac::test
