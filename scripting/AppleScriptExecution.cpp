#include "scripting/AppleScriptExecution.h"
#include "coreutils/Strings.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/running/Log.h"
#include "scripting/AppleEventDescriptors.h"

namespace mac {

namespace {

void storeMessage(NSDictionary const& errorInfo, NSString* error) {
    if (error) *error = as<NSString>(errorInfo.objectForKey_(NSAppleScriptErrorBriefMessage));
}

NSAppleEventDescriptor resultOfSource(NSString const& source, NSString* error) {
    NSAppleScript const script = NSAppleScript::alloc().initWithSource_(source);
    NSDictionary errorInfo;
    NSAppleEventDescriptor const result = script.executeAndReturnError_(&errorInfo);
    storeMessage(errorInfo, error);
    return result;
}

NSAppleEventDescriptor callOfHandler(NSString const& handler, NSAppleEventDescriptor const& parameters) {
    NSAppleEventDescriptor const event =
        NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
            kASAppleScriptSuite, kASSubroutineEvent, pxDescriptorWithProcessSerialNumberSelf(), kAutoGenerateReturnID,
            kAnyTransactionID);
    event.setDescriptor_forKeyword_(NSAppleEventDescriptor::descriptorWithString_(handler.lowercaseString()),
                                    keyASSubroutineName);
    event.setDescriptor_forKeyword_(parameters == nil ? NSAppleEventDescriptor::listDescriptor() : parameters,
                                    keyDirectObject);
    return event;
}

// Nil for an object that no parameter can be made of.
NSAppleEventDescriptor descriptorOfParameter(id const& parameter) {
    if (NSNumber const number = as<NSNumber>(parameter); number != nil)
        return NSAppleEventDescriptor::descriptorWithInt32_(number.integerValue());
    if (NSString const text = as<NSString>(parameter); text != nil)
        return NSAppleEventDescriptor::descriptorWithString_(text);
    return as<NSAppleEventDescriptor>(parameter);
}

NSString withBackslashesBefore(NSString const& text, NSString const& quote) {
    NSString const doubled = pxStringBySubstituting_with_(text, "\\", "\\\\");
    return pxStringBySubstituting_with_(doubled, quote, NSString("\\").stringByAppendingString_(quote));
}

} // namespace

NSString pxExecuteAsAppleScript(NSString receiver) {
    NSString dropped;
    return pxExecuteAsAppleScript_(receiver, &dropped);
}

NSString pxExecuteAsAppleScript_(NSString receiver, NSString* error) {
    return receiver == nil ? NSString() : resultOfSource(receiver, error).stringValue();
}

id pxExecuteAsAppleScript2_(NSString receiver, NSString* error) {
    return receiver == nil ? id() : pxObject(resultOfSource(receiver, error));
}

NSString pxExecuteAsShellScriptWithAdminPrivs_(NSString receiver, BOOL asksForAdministrator) {
    if (receiver == nil) return nil;
    char const* const privileges = asksForAdministrator ? " with administrator privileges" : "";
    return pxExecuteAsAppleScript(NSString::stringWithFormat_("do shell script \"%@\"%s", receiver, privileges));
}

// A double quote would end the literal, and what follows it in the text would run.
NSString pxQuotedForm(NSString receiver) {
    bool const endsLiteral = receiver.rangeOfString_("\"").location != NSNotFound;
    if (receiver == nil || endsLiteral) return nil;
    NSString error;
    NSString const quoted =
        pxExecuteAsAppleScript_(NSString::stringWithFormat_("quoted form of \"%@\"\n", receiver), &error);
    return error == nil ? quoted : NSString();
}

NSString pxStringByEscapingDoubleQuotes(NSString receiver) { return withBackslashesBefore(receiver, "\""); }

NSString pxStringByEscapingSingleQuotes(NSString receiver) { return withBackslashesBefore(receiver, "'"); }

id pxExecuteHandler_withParameters_error_(NSAppleScript receiver, NSString handler, NSAppleEventDescriptor parameters,
                                          NSString* error) {
    if (receiver == nil) return nil;
    NSDictionary errorInfo;
    NSAppleEventDescriptor const result =
        receiver.executeAppleEvent_error_(callOfHandler(handler, parameters), &errorInfo);
    storeMessage(errorInfo, error);
    return pxObject(result);
}

id pxExecuteHandler_error_withParameters_(NSAppleScript receiver, NSString handler, NSString* error,
                                          std::initializer_list<id> parameters) {
    return pxExecuteHandler_error_withParameters_(receiver, handler, error, NSArray::arrayWithObjects_(parameters));
}

id pxExecuteHandler_error_withParameters_(NSAppleScript receiver, NSString handler, NSString* error,
                                          NSArray parameters) {
    if (receiver == nil) return nil;
    NSAppleEventDescriptor const list = NSAppleEventDescriptor::listDescriptor();
    NSInteger index = 0;
    for (id const& parameter : parameters) {
        ++index;
        NSAppleEventDescriptor const descriptor = descriptorOfParameter(parameter);
        if (descriptor == nil) {
            NSLog("%s ERROR: Unrecognized type for parameter %d",
                  "-[NSAppleScript(PXUtils) pxExecuteHandler:error:withParameters:]", index);
            return nil;
        }
        list.insertDescriptor_atIndex_(descriptor, index);
    }
    return pxExecuteHandler_withParameters_error_(receiver, handler, list, error);
}

} // namespace mac
