#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/NSAppleScriptBody.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSNumber.h"

namespace mac {

namespace {

NSString textOf(std::u16string const& units) { return NSString::stringWithCodeUnits(units); }

NSString rangeText(applescript::SourceRange range) {
    std::string const text = "{" + std::to_string(range.start) + ", " + std::to_string(range.end - range.start) + "}";
    return NSString::stringWithUTF8String_(text);
}

} // namespace

ClassDescription NSAppleScript::describeClass() {
    return {
        .name = "NSAppleScript",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSAppleScript>,
        .methods = {method<&NSAppleScript::source>("source"), method<&NSAppleScript::isCompiled>("isCompiled")},
    };
}

// An error inside an application also has that application's name; none answers yet.
NSDictionary errorDictionary(applescript::ScriptError const& error) {
    applescript::SourceRange const range = error.range.value_or(applescript::SourceRange{});
    return NSDictionary::dictionaryWithObjectsAndKeys_({
        textOf(error.message),
        NSAppleScriptErrorMessage,
        textOf(error.message),
        NSAppleScriptErrorBriefMessage,
        NSNumber::numberWithInt_(error.number),
        NSAppleScriptErrorNumber,
        rangeText(range),
        NSAppleScriptErrorRange,
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

} // namespace mac
