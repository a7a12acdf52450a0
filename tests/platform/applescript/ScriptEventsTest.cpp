#include "platform/applescript/NSAppleScript.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/events/Descriptors.h"
#include "tests/support/TemporaryFolder.h"
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace mac::test {

namespace {

NSAppleScript scriptOf(NSString const& source) { return NSAppleScript::alloc().initWithSource_(source); }

std::string printed(NSAppleEventDescriptor const& descriptor) {
    if (descriptor == nil) return "(nil)";
    std::string const text = descriptor.description().UTF8String();
    constexpr std::string_view opening = "<NSAppleEventDescriptor: ";
    return text.substr(opening.size(), text.size() - opening.size() - 1);
}

std::string textAt(NSDictionary const& dictionary, NSString const& key) {
    NSString const text = as<NSString>(dictionary.objectForKey_(key));
    return text == nil ? "(nil)" : text.UTF8String();
}

int numberIn(NSDictionary const& error) {
    return as<NSNumber>(error.objectForKey_(NSAppleScriptErrorNumber)).intValue();
}

NSAppleEventDescriptor eventOf(AEEventClass eventClass, AEEventID eventID) {
    return NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
        eventClass, eventID, nil, -1, 0);
}

NSAppleEventDescriptor callOf(NSString const& name, NSAppleEventDescriptor const& parameters = nil) {
    NSAppleEventDescriptor const event = eventOf(kASAppleScriptSuite, kASSubroutineEvent);
    event.setParamDescriptor_forKeyword_(stringDescriptor(name), keyASSubroutineName);
    event.setParamDescriptor_forKeyword_(parameters, keyDirectObject);
    return event;
}

std::string printedCall(NSString const& source, NSAppleEventDescriptor const& event) {
    NSDictionary error;
    NSAppleEventDescriptor const result = scriptOf(source).executeAppleEvent_error_(event, &error);
    if (result != nil) return printed(result);
    return textAt(error, NSAppleScriptErrorMessage) + " (" + std::to_string(numberIn(error)) + ")";
}

TEST(NSAppleScript, AnswersTheResultOfARun) {
    NSDictionary error = NSDictionary::dictionary();
    NSAppleScript const script = scriptOf(R"({1 + 1, "a" & "b"})");
    EXPECT_EQ(printed(script.executeAndReturnError_(&error)), "[ 2, 'utxt'(\"ab\") ]");
    EXPECT_TRUE(error == nil);
    EXPECT_TRUE(script.isCompiled());
}

TEST(NSAppleScript, AnswersNullForARunWithoutAResult) {
    EXPECT_EQ(printed(scriptOf("return").executeAndReturnError_(nullptr)), "'null'()");
    EXPECT_EQ(printed(scriptOf("").executeAndReturnError_(nullptr)), "'null'()");
}

TEST(NSAppleScript, TellsWhatWentWrongInARun) {
    NSDictionary error;
    EXPECT_TRUE(scriptOf("set x to 1\nx + \"a\"").executeAndReturnError_(&error) == nil);
    EXPECT_EQ(textAt(error, NSAppleScriptErrorMessage), "Can’t make \"a\" into type number.");
    EXPECT_EQ(textAt(error, NSAppleScriptErrorBriefMessage), "Can’t make \"a\" into type number.");
    EXPECT_EQ(numberIn(error), -1700);
    EXPECT_EQ(textAt(error, NSAppleScriptErrorRange), "{11, 7}");
    EXPECT_EQ(textAt(error, NSAppleScriptErrorAppName), "(nil)");
    EXPECT_TRUE(scriptOf("1 / 0").executeAndReturnError_(nullptr) == nil);
}

TEST(NSAppleScript, TellsASyntaxErrorWhenItIsRun) {
    NSDictionary error;
    EXPECT_TRUE(scriptOf("set x to").executeAndReturnError_(&error) == nil);
    EXPECT_EQ(numberIn(error), -2741);
}

TEST(NSAppleScript, AValueThatNoDescriptorHoldsIsAnError) {
    NSDictionary error;
    EXPECT_TRUE(scriptOf("set x to {}\nset end of x to x\nx").executeAndReturnError_(&error) == nil);
    EXPECT_EQ(textAt(error, NSAppleScriptErrorMessage), "Stack overflow.");
}

TEST(NSAppleScript, PropertiesKeepTheirValuesFromRunToRun) {
    NSAppleScript const script = scriptOf("property n : 0\nset n to n + 1");
    script.executeAndReturnError_(nullptr);
    EXPECT_EQ(script.executeAndReturnError_(nullptr).int32Value(), 2);
}

TEST(NSAppleScript, CallsAHandlerByItsNameInAnyCase) {
    NSString const source = "on addUp(a, b)\nreturn a + b\nend addUp\non nothing()\nend nothing";
    NSAppleEventDescriptor const two = listDescriptor({numberDescriptor(1), numberDescriptor(2)});
    EXPECT_EQ(printedCall(source, callOf("addup", two)), "3");
    EXPECT_EQ(printedCall(source, callOf("ADDUP", two)), "3");
    EXPECT_EQ(printedCall(source, callOf("nothing", NSAppleEventDescriptor::listDescriptor())), "'null'()");
    EXPECT_EQ(printedCall(source, callOf("nothing")), "'null'()");
}

TEST(NSAppleScript, AHandlerSeesThePropertiesAndEarlierRuns) {
    NSAppleScript const script = scriptOf("property n : 5\non more()\nset n to n + 1\nend more");
    script.executeAppleEvent_error_(callOf("more"), nullptr);
    EXPECT_EQ(script.executeAppleEvent_error_(callOf("more"), nullptr).int32Value(), 7);
}

TEST(NSAppleScript, RefusesParametersThatDoNotFit) {
    EXPECT_EQ(printedCall("on f(a, b)\nend f", callOf("f", listDescriptor({numberDescriptor(1)}))),
              "{1} doesn’t match the parameters {a, b} for f. (-1721)");
    EXPECT_EQ(printedCall("on f(a)\na\nend f", callOf("f", numberDescriptor(4))), "4");
}

TEST(NSAppleScript, RefusesAMissingHandler) {
    EXPECT_EQ(printedCall("1", callOf("missing")), "«script» doesn’t understand the “missing” message. (-1708)");
}

TEST(NSAppleScript, CallsAHandlerWithLabels) {
    NSString const source = "on find of x at y above z given scale:s\nreturn {x, y, z, s}\nend find";
    NSAppleEventDescriptor const event = callOf("find", numberDescriptor(1));
    event.setParamDescriptor_forKeyword_(numberDescriptor(2), AEKeyword("at  "));
    event.setParamDescriptor_forKeyword_(numberDescriptor(3), AEKeyword("abve"));
    event.setParamDescriptor_forKeyword_(listDescriptor({stringDescriptor("Scale"), numberDescriptor(4)}),
                                         keyASUserRecordFields);
    EXPECT_EQ(printedCall(source, event), "[ 1, 2, 3, 4 ]");
    event.removeParamDescriptorWithKeyword_(AEKeyword("abve"));
    EXPECT_EQ(printedCall(source, event), "The above parameter is missing for find. (-1701)");
    event.setParamDescriptor_forKeyword_(listDescriptor({numberDescriptor(4)}), keyASUserRecordFields);
    EXPECT_EQ(printedCall(source, event), "An error of type -1702 has occurred. (-1702)");
}

TEST(NSAppleScript, AnOpenApplicationEventRunsTheScript) {
    NSAppleEventDescriptor const event = eventOf(kCoreEventClass, kAEOpenApplication);
    EXPECT_EQ(printedCall("on run argv\nreturn argv\nend run", event), "[  ]");
    event.setParamDescriptor_forKeyword_(listDescriptor({stringDescriptor("a"), numberDescriptor(2)}), keyDirectObject);
    EXPECT_EQ(printedCall("on run argv\nreturn argv\nend run", event), "[ 'utxt'(\"a\"), 2 ]");
    EXPECT_EQ(printedCall("3 ^ 2", event), "'doub'(\"9\")");
}

TEST(NSAppleScript, OtherEventsGoToTheHandlerOfTheirCommand) {
    NSAppleEventDescriptor const quit = eventOf(kCoreEventClass, kAEQuitApplication);
    EXPECT_EQ(printedCall("on quit\nreturn \"bye\"\nend quit", quit), "'utxt'(\"bye\")");
    EXPECT_EQ(printedCall("1", quit), "«script» doesn’t understand the “quit” message. (-1708)");
    NSAppleEventDescriptor const open = eventOf(kCoreEventClass, AEEventID("odoc"));
    open.setParamDescriptor_forKeyword_(listDescriptor({numberDescriptor(1), numberDescriptor(2)}), keyDirectObject);
    EXPECT_EQ(printedCall("on open these\nreturn count these\nend open", open), "2");
    EXPECT_EQ(printedCall("1", eventOf(AEEventClass("abcd"), AEEventID("efgh"))),
              "«script» doesn’t understand the “«event abcdefgh»” message. (-1708)");
}

TEST(NSAppleScript, WhatIsNoEventIsNotUnderstood) {
    for (NSAppleEventDescriptor const& wrong : {NSAppleEventDescriptor(), numberDescriptor(1), listDescriptor({}),
                                                eventOf(kASAppleScriptSuite, kASSubroutineEvent)}) {
        NSDictionary error;
        EXPECT_TRUE(scriptOf("1").executeAppleEvent_error_(wrong, &error) == nil);
        EXPECT_EQ(numberIn(error), -1708);
    }
}

TEST(NSAppleScript, ARunThatTakesTooLongEndsAndNoTryKeepsIt) {
    NSAppleScript const script = scriptOf("repeat\ntry\nrepeat\nend repeat\nend try\nend repeat");
    script.limitRunsTo(0.01);
    NSDictionary error;
    EXPECT_TRUE(script.executeAndReturnError_(&error) == nil);
    EXPECT_EQ(numberIn(error), -1712);
}

extern "C" void cancelScripts(int) { NSAppleScript::cancelRunningScripts(); }

TEST(NSAppleScript, AnEndlessRunIsCancelledFromAnotherThread) {
    TemporaryFolder const folder;
    std::string const pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    // The run has begun when it writes.
    std::thread other([&] {
        std::ifstream reading(pipe);
        std::string line;
        std::getline(reading, line);
        NSAppleScript::cancelRunningScripts();
    });
    std::string const source =
        "do shell script \"echo > '" + pipe + "'\"\nrepeat\ntry\nrepeat\nend repeat\nend try\nend repeat";
    NSDictionary error;
    EXPECT_TRUE(scriptOf(NSString::stringWithUTF8String_(source)).executeAndReturnError_(&error) == nil);
    other.join();
    EXPECT_EQ(numberIn(error), -128);
    EXPECT_EQ(scriptOf("1").executeAndReturnError_(nullptr).int32Value(), 1) << "what runs later is not cancelled";
}

TEST(NSAppleScript, AnEndlessRunIsCancelledFromASignal) {
    NSAppleScript const script =
        scriptOf("do shell script \"kill -USR1 $PPID\"\nrepeat\ntry\nrepeat\nend repeat\nend try\nend repeat");
    auto* const previous = std::signal(SIGUSR1, cancelScripts);
    NSDictionary error;
    EXPECT_TRUE(script.executeAndReturnError_(&error) == nil);
    std::signal(SIGUSR1, previous);
    EXPECT_EQ(numberIn(error), -128);
    EXPECT_EQ(scriptOf("1").executeAndReturnError_(nullptr).int32Value(), 1) << "what runs later is not cancelled";
}

TEST(NSAppleScript, NilRunsNothing) {
    NSAppleScript const none = nil;
    EXPECT_TRUE(none.executeAndReturnError_(nullptr) == nil);
    EXPECT_TRUE(none.executeAppleEvent_error_(callOf("f"), nullptr) == nil);
    none.limitRunsTo(1);
    NSDictionary error = NSDictionary::dictionary();
    EXPECT_TRUE(none.executeAndReturnError_(&error) == nil);
    EXPECT_TRUE(error == nil);
}

} // namespace

} // namespace mac::test
