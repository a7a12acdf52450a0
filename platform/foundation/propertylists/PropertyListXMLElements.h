#pragma once

#include "platform/foundation/propertylists/PropertyListBuilder.h"
#include <string>
#include <string_view>

namespace mac {

// The elements of the XML form of property lists.
enum class PropertyListElement {
    Plist,
    Array,
    Dictionary,
    Key,
    String,
    Integer,
    Real,
    Date,
    Data,
    True,
    False,
    Unknown
};

PropertyListElement propertyListElementOfName(std::u16string_view name);
// The name of a known element.
std::string nameOfPropertyListElement(PropertyListElement element);

// Adds what an element without elements of its own stands for to the list: a key, or a value. Answers why that cannot
// be, or an empty text.
std::string_view addLeafElement(PropertyListBuilder& builder, PropertyListElement element, std::u16string_view text);

} // namespace mac
