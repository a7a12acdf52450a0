#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/language/StackRoom.h"
#include "platform/applescript/language/Terminology.h"
#include "platform/applescript/runtime/ScalarText.h"
#include "platform/applescript/runtime/SourceForm.h"
#include <initializer_list>

namespace mac::applescript {

namespace {

constexpr std::u16string_view FullStop = u".";

std::u16string joined(std::initializer_list<std::u16string_view> parts) {
    std::u16string whole;
    for (std::u16string_view const part : parts)
        whole += part;
    return whole;
}

} // namespace

ScriptError plainError(std::int32_t number) { return {.number = number, .message = messageOfNumber(number)}; }

ScriptError cannotMake(Value const& value, std::u16string_view type) {
    return {.number = errors::CannotCoerce,
            .message = joined({u"Can’t make ", sourceForm(value), u" into type ", type, FullStop}),
            .from = value};
}

ScriptError cannotMake(Value const& value, Code type) {
    ScriptError error = cannotMake(value, nameOfCode(type));
    error.to = Value::type(type);
    return error;
}

ScriptError cannotGet(Value const& object) {
    return {
        .number = errors::CannotGet, .message = joined({u"Can’t get ", sourceForm(object), FullStop}), .from = object};
}

ScriptError cannotSet(Value const& object, Value const& value) {
    return {.number = errors::CannotSet,
            .message = joined({u"Can’t set ", sourceForm(object), u" to ", sourceForm(value), FullStop}),
            .from = object};
}

ScriptError invalidIndex(Value const& object) {
    return {.number = errors::InvalidIndex,
            .message = joined({u"Can’t get ", sourceForm(object), u". Invalid index."}),
            .from = object};
}

ScriptError mayNotSet(Value const& object, Value const& value) {
    return {.number = errors::CannotSetAccess,
            .message =
                joined({u"Can’t set ", sourceForm(object), u" to ", sourceForm(value), u". Access not allowed."}),
            .from = object};
}

ScriptError notUnderstood(Value const& receiver, std::u16string_view message) {
    return {.number = errors::NotUnderstood,
            .message = joined({sourceForm(receiver), u" doesn’t understand the “", message, u"” message."}),
            .from = receiver};
}

ScriptError variableNotDefined(Symbol name) {
    return {.number = errors::VariableNotDefined,
            .message = joined({u"The variable ", name->spelling, u" is not defined."})};
}

ScriptError missingParameter(std::u16string_view parameter, std::u16string_view message) {
    return {.number = errors::MissingParameter,
            .message = joined({u"The ", parameter, u" parameter is missing for ", message, FullStop})};
}

ScriptError divisionByZero(double dividend) {
    return {.number = errors::DivisionByZero, .message = joined({u"Can’t divide ", realText(dividend), u" by zero."})};
}

ScriptError fileNotFound(Value const& file) {
    return {.number = errors::FileNotFound,
            .message = joined({u"File ", humanForm(file), u" wasn’t found."}),
            .from = file};
}

ScriptError errorOf(SyntaxError const& error) {
    return {.number = error.number, .message = error.message, .range = error.range, .isSyntax = true};
}

void requireStackRoom() {
    if (!hasStackRoom()) throw plainError(errors::StackOverflow);
}

} // namespace mac::applescript
