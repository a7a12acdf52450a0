#pragma once

#include "platform/applescript/language/ErrorNumbers.h"
#include "platform/applescript/language/ScriptToken.h"
#include "platform/applescript/runtime/ScriptValue.h"
#include <optional>

namespace mac::applescript {

// What goes wrong in a script, and what a script's own error statement says. Thrown; caught by try and by the engine.
struct ScriptError {
    std::int32_t number{0};
    std::u16string message{};
    // Empty if the error is not about an object.
    Value from{};
    Value to{};
    Value partialResult{};
    std::optional<SourceRange> range{};
    bool isSyntax{false};
    // The application that raised it; its name stands before the message then. Empty: the engine.
    std::u16string application{};
};

// Stops a script from outside; no try of the script catches it.
struct ScriptStopped {
    ScriptError error;
};

// Every text of an error comes from these; objects appear in source form.

ScriptError plainError(std::int32_t number);
ScriptError cannotMake(Value const& value, Code type);
ScriptError cannotMake(Value const& value, std::u16string_view type);
ScriptError cannotGet(Value const& object);
// An index beyond what there is.
ScriptError invalidIndex(Value const& object);
ScriptError cannotSet(Value const& object, Value const& value);
// Something that can be read only.
ScriptError mayNotSet(Value const& object, Value const& value);
ScriptError notUnderstood(Value const& receiver, std::u16string_view message);
ScriptError variableNotDefined(Symbol name);
ScriptError missingParameter(std::u16string_view parameter, std::u16string_view message);
ScriptError divisionByZero(double dividend);
ScriptError fileNotFound(Value const& file);
// What the parser found wrong, with its place.
ScriptError errorOf(SyntaxError const& error);

// Throws -2706 when the calling thread's stack is nearly used up. Whatever recurses over values or the parts of a
// script asks first, so that no nesting ends the program.
void requireStackRoom();

} // namespace mac::applescript
