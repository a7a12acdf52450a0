#include "scripting/AppleScriptExecution.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/support/Environment.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mac::test {

namespace {

// The string's text; "(nil)" for nil and for an object of another kind.
std::string stringText(id const& object) {
    NSString const string = as<NSString>(object);
    return string == nil ? "(nil)" : string.UTF8String();
}

NSAppleScript scriptOf(NSString const& source) { return NSAppleScript::alloc().initWithSource_(source); }

TEST(AppleScriptExecution, AnswersTheResultAsText) {
    NSString error = "left over";
    EXPECT_EQ(stringText(pxExecuteAsAppleScript("\"a\" & 1\n")), "a1");
    EXPECT_EQ(stringText(pxExecuteAsAppleScript_("3 + 4", &error)), "7");
    EXPECT_TRUE(error == nil);
    EXPECT_EQ(stringText(pxExecuteAsAppleScript_("1.5", nullptr)), "1.5");
    EXPECT_EQ(stringText(pxExecuteAsAppleScript("true")), "true");
}

TEST(AppleScriptExecution, AResultWithoutTextIsNil) {
    NSString error = "left over";
    EXPECT_TRUE(pxExecuteAsAppleScript_("{1, 2}", &error) == nil);
    EXPECT_TRUE(error == nil);
    EXPECT_TRUE(pxExecuteAsAppleScript_("return", &error) == nil);
}

TEST(AppleScriptExecution, TellsTheBriefMessageOfAnError) {
    NSString error;
    EXPECT_TRUE(pxExecuteAsAppleScript_("set x to", &error) == nil);
    EXPECT_EQ(stringText(error), "Expected expression but found end of script.");
    EXPECT_TRUE(pxExecuteAsAppleScript_("1 / 0", &error) == nil);
    EXPECT_EQ(stringText(error), "Can’t divide 1.0 by zero.");
    EXPECT_TRUE(pxExecuteAsAppleScript2_("error \"gone\" number 7", &error) == nil);
    EXPECT_EQ(stringText(error), "gone");
    EXPECT_TRUE(pxExecuteAsAppleScript("set x to") == nil);
    EXPECT_TRUE(pxExecuteAsAppleScript2_("1 / 0", nullptr) == nil);
}

TEST(AppleScriptExecution, AnswersTheResultAsAnObject) {
    NSString error = "left over";
    id const array = pxExecuteAsAppleScript2_("{1, \"a\", 1.5, true, {k:2}, missing value}", &error);
    EXPECT_TRUE(error == nil);
    NSArray const items = as<NSArray>(array);
    ASSERT_EQ(items.count(), 6U);
    EXPECT_EQ(as<NSNumber>(items.objectAtIndex_(0)).intValue(), 1);
    EXPECT_EQ(stringText(items.objectAtIndex_(1)), "a");
    EXPECT_EQ(as<NSNumber>(items.objectAtIndex_(2)).doubleValue(), 1.5);
    EXPECT_TRUE(as<NSNumber>(items.objectAtIndex_(3)).boolValue());
    EXPECT_EQ(as<NSNumber>(as<NSDictionary>(items.objectAtIndex_(4)).objectForKey_("k")).intValue(), 2);
    EXPECT_EQ(stringText(items.objectAtIndex_(5)), "msng");
    EXPECT_EQ(as<NSData>(pxExecuteAsAppleScript2_("return", nullptr)).length(), 0U);
}

TEST(AppleScriptExecution, RunsAShellCommandAsItStands) {
    EXPECT_EQ(stringText(pxExecuteAsShellScriptWithAdminPrivs_("echo one; echo two", NO)), "one\rtwo");
    EXPECT_TRUE(pxExecuteAsShellScriptWithAdminPrivs_("exit 3", NO) == nil);
    EXPECT_TRUE(pxExecuteAsShellScriptWithAdminPrivs_("echo \"a\"", NO) == nil) << "the quotes end the literal";
    EXPECT_EQ(
        stringText(pxExecuteAsShellScriptWithAdminPrivs_(pxStringByEscapingDoubleQuotes("printf '%s' \"a\\\\b\""), NO)),
        "a\\b");
}

TEST(AppleScriptExecution, AsksForAnAdministratorsRightsIfToldTo) {
    TemporaryFolder const folder;
    // Stands for the program that would ask a person.
    std::string const program = folder.makeFile("pkexec", "#!/bin/sh\nASKED=yes exec \"$@\"\n");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    EnvironmentVariable const path("PATH", folder.path() + ":/usr/bin:/bin");
    // Root would not be asked.
    OrdinaryUser const user;
    EXPECT_EQ(stringText(pxExecuteAsShellScriptWithAdminPrivs_("echo asked: $ASKED", NO)), "asked:");
    EXPECT_EQ(stringText(pxExecuteAsShellScriptWithAdminPrivs_("echo asked: $ASKED", YES)), "asked: yes");
}

TEST(AppleScriptExecution, QuotesTextForTheShell) {
    EXPECT_EQ(stringText(pxQuotedForm("a b")), "'a b'");
    EXPECT_EQ(stringText(pxQuotedForm("it's")), "'it'\\''s'");
    EXPECT_EQ(stringText(pxQuotedForm("")), "''");
    EXPECT_TRUE(pxQuotedForm("a\"b") == nil);
    EXPECT_TRUE(pxQuotedForm("a\" & \"b") == nil);
    EXPECT_TRUE(pxQuotedForm("a\\\"b") == nil);
}

TEST(AppleScriptExecution, EscapesBackslashesBeforeQuotes) {
    EXPECT_EQ(stringText(pxStringByEscapingDoubleQuotes("a\\\"b")), "a\\\\\\\"b");
    EXPECT_EQ(stringText(pxStringByEscapingSingleQuotes("a\\'b")), "a\\\\\\'b");
    EXPECT_EQ(stringText(pxStringByEscapingDoubleQuotes("it's")), "it's");
    EXPECT_EQ(stringText(pxStringByEscapingSingleQuotes("say \"a\"")), "say \"a\"");
    EXPECT_EQ(stringText(pxStringByEscapingDoubleQuotes("")), "");
    EXPECT_EQ(stringText(pxStringByEscapingSingleQuotes("")), "");
}

TEST(AppleScriptExecution, AnyFileNameSurvivesTheWayThroughAScript) {
    TemporaryFolder const folder;
    std::string const name = "a \"b\" \\n 'c'\n\r\td\\";
    std::ofstream(folder.path() + "/" + name) << "x";
    std::string const path = folder.path() + "/" + name;
    NSString const source =
        NSString::stringWithFormat_("POSIX path of ((POSIX file \"%@\") as alias)",
                                    pxStringByEscapingDoubleQuotes(NSString::stringWithUTF8String_(path)));
    EXPECT_EQ(stringText(pxExecuteAsAppleScript(source)), path);
    NSString const raw = NSString::stringWithCodeUnits(unitsFromFileSystemBytes("/a\xE9\"\\b"));
    NSString const echoed = pxExecuteAsAppleScript(
        NSString::stringWithFormat_("POSIX path of (POSIX file \"%@\")", pxStringByEscapingDoubleQuotes(raw)));
    EXPECT_TRUE(echoed.isEqualToString_(raw));
}

constexpr char Handlers[] = "on Add(a, b)\nreturn a + b\nend Add\non all_of(l)\nreturn l\nend all_of\n"
                            "on none()\nreturn \"called\"\nend none\non fail()\nerror \"no\" number 5\nend fail";

TEST(AppleScriptExecution, CallsAHandlerWithAListOfParameters) {
    NSAppleScript const script = scriptOf(Handlers);
    NSAppleEventDescriptor const list = NSAppleEventDescriptor::listDescriptor();
    list.insertDescriptor_atIndex_(NSAppleEventDescriptor::descriptorWithInt32_(3), 0);
    list.insertDescriptor_atIndex_(NSAppleEventDescriptor::descriptorWithInt32_(4), 0);
    NSString error = "left over";
    EXPECT_EQ(as<NSNumber>(pxExecuteHandler_withParameters_error_(script, "aDD", list, &error)).intValue(), 7);
    EXPECT_TRUE(error == nil);
    EXPECT_EQ(stringText(pxExecuteHandler_withParameters_error_(script, "none", nil, nullptr)), "called");
}

TEST(AppleScriptExecution, TellsWhyAHandlerFailed) {
    NSAppleScript const script = scriptOf(Handlers);
    NSString error;
    EXPECT_TRUE(pxExecuteHandler_withParameters_error_(script, "fail", nil, &error) == nil);
    EXPECT_EQ(stringText(error), "no");
    EXPECT_TRUE(pxExecuteHandler_withParameters_error_(script, "Missing", nil, &error) == nil);
    EXPECT_EQ(stringText(error), "«script» doesn’t understand the “missing” message.") << "the name is in lower case";
    EXPECT_TRUE(pxExecuteHandler_withParameters_error_(script, "Add", nil, &error) == nil);
    EXPECT_EQ(stringText(error), "{} doesn’t match the parameters {a, b} for Add.");
    EXPECT_TRUE(pxExecuteHandler_withParameters_error_(script, nil, nil, &error) == nil);
    EXPECT_TRUE(error != nil);
}

TEST(AppleScriptExecution, CallsAHandlerWithObjects) {
    NSAppleScript const script = scriptOf(Handlers);
    NSString error = "left over";
    EXPECT_EQ(stringText(pxExecuteHandler_error_withParameters_(
                  scriptOf("on f(a, b, c)\nreturn {a, b, c} as text\nend f"), "f", &error,
                  {NSNumber::numberWithDouble_(2.7), "x", NSAppleEventDescriptor::descriptorWithBoolean_(YES)})),
              "2xtrue");
    EXPECT_TRUE(error == nil);
    EXPECT_EQ(stringText(pxExecuteHandler_error_withParameters_(script, "none", nullptr, {nil, "never read"})),
              "called");
    EXPECT_EQ(stringText(pxExecuteHandler_error_withParameters_(script, "none", nullptr, {})), "called");
}

TEST(AppleScriptExecution, AParameterOfAnotherClassIsLoggedAndCallsNothing) {
    std::vector<std::string> lines;
    LogListener const listener([&](NSString const& line) { lines.push_back(line.UTF8String()); });
    NSString error = "as it was";
    EXPECT_TRUE(pxExecuteHandler_error_withParameters_(scriptOf(Handlers), "add", &error,
                                                       {"a", NSDate::date(), NSDate::date()}) == nil);
    EXPECT_EQ(lines, std::vector<std::string>{"-[NSAppleScript(PXUtils) pxExecuteHandler:error:withParameters:] ERROR: "
                                              "Unrecognized type for parameter 2"});
    EXPECT_EQ(stringText(error), "as it was");
}

TEST(AppleScriptExecution, NilAnswersNilAndStoresNothing) {
    NSString error = "as it was";
    EXPECT_TRUE(pxExecuteAsAppleScript(nil) == nil);
    EXPECT_TRUE(pxExecuteAsAppleScript_(nil, &error) == nil);
    EXPECT_TRUE(pxExecuteAsAppleScript2_(nil, &error) == nil);
    EXPECT_TRUE(pxExecuteAsShellScriptWithAdminPrivs_(nil, YES) == nil);
    EXPECT_TRUE(pxQuotedForm(nil) == nil);
    EXPECT_TRUE(pxStringByEscapingDoubleQuotes(nil) == nil);
    EXPECT_TRUE(pxStringByEscapingSingleQuotes(nil) == nil);
    EXPECT_TRUE(pxExecuteHandler_withParameters_error_(nil, "f", nil, &error) == nil);
    EXPECT_TRUE(pxExecuteHandler_error_withParameters_(nil, "f", &error, {NSDate::date()}) == nil);
    EXPECT_EQ(stringText(error), "as it was");
}

} // namespace

} // namespace mac::test
