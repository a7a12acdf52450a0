#pragma once

#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/TextContext.h"
#include <optional>
#include <span>

namespace mac::applescript {

// Whether the class is one of the three that text has.
bool isTextClass(Code type);

// The value as one of that class; nothing where there is no way. References are followed first.
std::optional<Value> coerced(Value const& unresolved, Code type, TextContext const& context);

// Coerces, or throws the error that the coercion is not possible.
Value requireType(Value const& value, Code type, TextContext const& context);
// The value as the first of the classes that it already has, else as the first that it can be coerced to.
Value requireOneOf(Value const& value, std::span<Code const> types, TextContext const& context);
// A number of either kind.
Value requireNumber(Value const& value, TextContext const& context);
double requireReal(Value const& value, TextContext const& context);
std::int32_t requireInteger(Value const& value, TextContext const& context);
std::u16string requireText(Value const& value, TextContext const& context);
bool requireBoolean(Value const& value, TextContext const& context);
// A path of a file, an alias, HFS text; POSIX text where it begins with a slash.
std::u16string requirePath(Value const& value, TextContext const& context);

// The class, as `class of` answers it.
Code classOfValue(Value const& value);
// Whether the value is of the class as it is, without coercion: number holds both kinds.
bool isOfClass(Value const& value, Code type);

} // namespace mac::applescript
