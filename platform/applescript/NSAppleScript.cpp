#include "platform/applescript/NSAppleScript.h"
#include "platform/Registration.h"
#include "platform/applescript/NSAppleScriptBody.h"
#include "platform/applescript/applications/FinderEvents.h"
#include "platform/applescript/runtime/ScriptDescriptors.h"
#include "platform/applescript/runtime/ScriptPaths.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

NSString textOf(std::u16string const& units) { return NSString::stringWithCodeUnits(units); }

// Without "Finder got an error: ".
std::u16string briefMessage(applescript::ScriptError const& error) {
    std::u16string const opening = error.application + u" got an error: ";
    bool const isOpened = !error.application.empty() && error.message.starts_with(opening);
    return isOpened ? error.message.substr(opening.size()) : error.message;
}

NSString rangeText(applescript::SourceRange range) {
    std::string const text = "{" + std::to_string(range.start) + ", " + std::to_string(range.end - range.start) + "}";
    return NSString::stringWithUTF8String_(text);
}

// Lock-free, so that a signal's handler may set it.
std::atomic<bool> s_isCancelled{false};
int s_runningScripts = 0;

// A script that a script's event runs is cancelled with it.
class Running {
public:
    Running() {
        if (s_runningScripts++ == 0) s_isCancelled = false;
    }
    ~Running() { --s_runningScripts; }
    Running(Running const&) = delete;
    Running& operator=(Running const&) = delete;
};

NSAppleEventDescriptor errorInto(applescript::ScriptError const& error, NSDictionary* errorInfo) {
    if (errorInfo) *errorInfo = errorDictionary(error);
    return nil;
}

NSAppleEventDescriptor answered(applescript::ScriptOutcome const& outcome, NSDictionary* errorInfo) {
    if (outcome.error) return errorInto(*outcome.error, errorInfo);
    try {
        return NSAppleEventDescriptor::descriptorWithAEDesc(applescript::descriptorOfValue(outcome.value));
    } catch (applescript::ScriptError const& error) {
        return errorInto(error, errorInfo);
    }
}

} // namespace

ClassDescription NSAppleScript::describeClass() {
    applescript::installFileCoercions();
    return {
        .name = "NSAppleScript",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSAppleScript>,
        .methods =
            {
                method<&NSAppleScript::initWithSource_>("initWithSource:"),
                method<&NSAppleScript::source>("source"),
                method<&NSAppleScript::isCompiled>("isCompiled"),
            },
    };
}

NSDictionary errorDictionary(applescript::ScriptError const& error) {
    applescript::SourceRange const range = error.range.value_or(applescript::SourceRange{});
    // The list ends with the first nil.
    id const application = error.application.empty() ? id() : id(textOf(error.application));
    return NSDictionary::dictionaryWithObjectsAndKeys_({
        textOf(error.message),
        NSAppleScriptErrorMessage,
        textOf(briefMessage(error)),
        NSAppleScriptErrorBriefMessage,
        NSNumber::numberWithInt_(error.number),
        NSAppleScriptErrorNumber,
        rangeText(range),
        NSAppleScriptErrorRange,
        application,
        NSAppleScriptErrorAppName,
    });
}

NSAppleScript NSAppleScript::initWithSource_(NSString const& source) const {
    if (*this == nil || source == nil) return nil;
    bodyOf(*this)->source = as<NSString>(source.copy());
    return *this;
}

NSString NSAppleScript::source() const { return *this == nil ? NSString() : bodyOf(*this)->source; }

bool NSAppleScript::isCompiled() const { return *this != nil && bodyOf(*this)->compiled.has_value(); }

bool NSAppleScript::compileAndReturnError_(NSDictionary* errorInfo) const {
    if (errorInfo) *errorInfo = nil;
    if (*this == nil) return false;
    if (isCompiled()) return true;
    applescript::ScriptError error;
    bodyOf(*this)->compiled = applescript::CompiledScript::compile(bodyOf(*this)->source.codeUnits(), error);
    if (isCompiled()) return true;
    if (errorInfo) *errorInfo = errorDictionary(error);
    return false;
}

NSAppleEventDescriptor NSAppleScript::executeAndReturnError_(NSDictionary* errorInfo) const {
    NSAppleScript const kept = *this;
    if (!kept.compileAndReturnError_(errorInfo)) return nil;
    Running const running;
    return answered(bodyOf(kept)->compiled->run({.cancelled = &s_isCancelled, .seconds = bodyOf(kept)->longestRun}),
                    errorInfo);
}

NSAppleEventDescriptor NSAppleScript::executeAppleEvent_error_(NSAppleEventDescriptor const& event,
                                                               NSDictionary* errorInfo) const {
    NSAppleScript const kept = *this;
    NSAppleEventDescriptor const keptEvent = event;
    if (!kept.compileAndReturnError_(errorInfo)) return nil;
    Running const running;
    AppleEvent const sent = keptEvent == nil ? AppleEvent() : *keptEvent.aeDesc();
    return answered(
        perform(*bodyOf(kept)->compiled, sent, {.cancelled = &s_isCancelled, .seconds = bodyOf(kept)->longestRun}),
        errorInfo);
}

void NSAppleScript::limitRunsTo(double seconds) const {
    if (*this != nil) bodyOf(*this)->longestRun = seconds;
}

void NSAppleScript::cancelRunningScripts() { s_isCancelled = true; }

void registerAppleScript() {
    registerClasses<NSAppleScript>();
    setEventStandIn(finderReplyTo);
}

} // namespace mac
