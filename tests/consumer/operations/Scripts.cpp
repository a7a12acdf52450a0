#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "scripting/AppleEventDescriptors.h"
#include "scripting/AppleScriptExecution.h"
#include "tests/consumer/operations/Trial.h"

// Scripts, and Apple events as plain objects.

namespace consumer {

using namespace mac;

namespace {

void tryHandlers(Trial const& trial) {
    NSAppleScript const script = NSAppleScript::alloc().initWithSource_("on join(a, b)\nreturn a & b\nend join");
    NSAppleEventDescriptor const list = NSAppleEventDescriptor::listDescriptor();
    list.insertDescriptor_atIndex_(NSAppleEventDescriptor::descriptorWithString_("x"), 1);
    list.insertDescriptor_atIndex_(NSAppleEventDescriptor::descriptorWithString_("y"), 2);
    NSString error;
    trial.expect("pxExecuteHandler_withParameters_error_",
                 isText(pxExecuteHandler_withParameters_error_(script, "join", list, &error), "xy"));
    trial.expect(
        "pxExecuteHandler_error_withParameters_",
        isText(pxExecuteHandler_error_withParameters_(script, "join", &error, {NSString("x"), NSString("y")}), "xy"));
}

void tryDescriptors() {
    Trial const trial("scripting/AppleEventDescriptors");
    NSAppleEventDescriptor const itself = pxDescriptorWithProcessSerialNumberSelf();
    trial.expect("pxDescriptorWithProcessSerialNumberSelf", itself.data().length() == 8);
    NSAppleEventDescriptor const event = pxFinderAppleEventWithEventID_(AEEventID("fupd"));
    trial.expect("pxFinderAppleEventWithEventID_", event.eventID() == AEEventID("fupd"));
    trial.expect("pxFinderAppleEventWithEventClass_eventID_",
                 pxFinderAppleEventWithEventClass_eventID_(AEEventClass("core"), AEEventID("getd")).eventID() ==
                     AEEventID("setd"));
    trial.expect("pxObject", isText(pxObject(NSAppleEventDescriptor::descriptorWithString_("x")), "x"));
    // No Finder runs yet.
    trial.expect("pxDescriptorWithProcessSerialNumberFinder", pxDescriptorWithProcessSerialNumberFinder() == nil);
    trial.expect("pxSend", !pxSend(event));
}

} // namespace

void tryScripts() {
    Trial const trial("scripting/AppleScriptExecution");
    NSString error;
    trial.expect("pxExecuteAsAppleScript", isText(pxExecuteAsAppleScript("\"TITLE\" & \"İ\""), "TITLEİ"));
    trial.expect("pxExecuteAsAppleScript_",
                 pxExecuteAsAppleScript_("error \"no\"", &error) == nil && isText(error, "no"));
    NSNumber const sum = as<NSNumber>(pxExecuteAsAppleScript2_("1.5 + 1", &error));
    trial.expect("pxExecuteAsAppleScript2_", sum.doubleValue() == 2.5);
    trial.expect("pxExecuteAsShellScriptWithAdminPrivs_",
                 isText(pxExecuteAsShellScriptWithAdminPrivs_("echo title", NO), "title"));
    trial.expect("pxQuotedForm", isText(pxQuotedForm("it's"), "'it'\\''s'"));
    trial.expect("pxStringByEscapingDoubleQuotes", isText(pxStringByEscapingDoubleQuotes("a\"b\\"), "a\\\"b\\\\"));
    trial.expect("pxStringByEscapingSingleQuotes", isText(pxStringByEscapingSingleQuotes("it's"), "it\\'s"));
    tryHandlers(trial);
    tryDescriptors();
}

} // namespace consumer
