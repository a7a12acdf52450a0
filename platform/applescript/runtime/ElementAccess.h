#pragma once

#include "platform/applescript/runtime/ObjectSpecifier.h"
#include "platform/applescript/runtime/TextContext.h"
#include <optional>

namespace mac::applescript {

// Properties and elements of the engine's own values. Nothing where the value has no such thing; objects of
// applications are asked of the application instead.

struct ElementSelector {
    Form form{Form::Index};
    Code want{0};
    Value from{};
    Value to{};
};

std::optional<Value> elementOf(Value const& container, ElementSelector const& selector, TextContext const& context);
std::optional<Value> propertyOf(Value const& container, Symbol name, TextContext const& context);
// What every script finds in AppleScript itself: pi, space, text item delimiters.
std::optional<Value> propertyOfAppleScript(Symbol name, TextContext const& context);

// False where it cannot be set.
bool setElementOf(Value const& container, ElementSelector const& selector, Value const& value,
                  TextContext const& context);
bool setPropertyOf(Value const& container, Symbol name, Value const& value, TextContext& context);
void setTextItemDelimiters(Value const& value, TextContext& context);

// Follows references to the end; any other value is itself. Throws where there is nothing.
Value resolved(Value const& value, TextContext const& context);
Value objectOf(SpecifierObject const& specifier, Value const& asValue, TextContext const& context);
void setObject(Value const& target, Value const& value, TextContext& context);

// How many elements of the class there are; nothing where the value has none of the kind.
std::optional<std::size_t> countOf(Value const& container, Code elementClass, TextContext const& context);

} // namespace mac::applescript
