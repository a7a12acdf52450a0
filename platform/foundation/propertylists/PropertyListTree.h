#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// What the writers ask of an object.

enum class PropertyListKind { None, Array, Dictionary, String, Number, Date, Data, Identifier };

// None for nil and for what property lists do not hold.
PropertyListKind propertyListKind(id const& object);
// Says why an object of no kind cannot be written.
std::string complaintAboutKind(id const& object);

inline constexpr std::string_view kPropertyListKeyIsNoString = "A dictionary has a key that is no string";

// In the order of their code units, so that equal dictionaries are written alike; nothing when a key is no string.
std::optional<std::vector<NSString>> sortedKeys(NSDictionary const& dictionary);

// The only key of the dictionary that stands for a keyed archive's identifier in XML; its value is an integer.
inline constexpr std::string_view kPropertyListIdentifierKey = "CF$UID";
// The identifier that such a dictionary stands for; nil if it is another one or the integer has more than 32 bits.
id identifierOfDictionary(NSDictionary const& dictionary);

} // namespace mac
