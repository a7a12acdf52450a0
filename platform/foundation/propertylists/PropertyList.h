#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/system/Result.h"
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mac {

// What the writers ask of an object.

enum class PropertyListKind { None, Array, Dictionary, String, Number, Date, Data, Identifier };

// The kind of the object; None for nil and for classes that property lists do not hold.
PropertyListKind propertyListKind(id const& object);
// Says why an object of no kind cannot be written.
std::string complaintAboutKind(id const& object);

inline constexpr std::string_view kPropertyListKeyIsNoString = "A dictionary has a key that is no string";

// The keys in the order of their code units, so that equal dictionaries are written alike; nullopt if a key is not a
// string.
std::optional<std::vector<NSString>> sortedKeys(NSDictionary const& dictionary);

// The only key of the dictionary that stands for a keyed archive's identifier in XML; its value is an integer.
inline constexpr std::string_view kPropertyListIdentifierKey = "CF$UID";
// The identifier that such a dictionary stands for; nil if it is another one or the integer has more than 32 bits.
id identifierOfDictionary(NSDictionary const& dictionary);

// The binary form: eight bytes of head, the objects, a table of their offsets, and 32 bytes of trailer.

bool isPropertyListBinary(std::span<std::byte const> data);

// Objects that the file shares are shared by what is read, unless containers are to be mutable: then each place gets
// its own. Keys are strings; sets, unique identifiers and nulls are refused. Reasons name the offset in the file.
Result<id, Failure> readPropertyListBinary(std::span<std::byte const> data, NSPropertyListMutabilityOptions option);

// Equal strings, numbers, dates and data are written once; keys in the order of their code units, so that equal lists
// become equal bytes. Fails for a date that is NaN.
Result<std::string, Failure> writePropertyListBinary(id const& propertyList);

// The old-style text form: { key = value; }, ( value, value ), <0F0F>, strings with or without quotes, comments as in
// C. A dictionary's content may stand without braces; blank text is an empty dictionary; a key without value is its own
// value. Octal escapes in strings are in the NeXTSTEP encoding.
Result<id, Failure> readPropertyListOldStyle(std::u16string_view text, NSPropertyListMutabilityOptions option);

// The text of a property list file as UTF-16, without a byte order mark. The encoding is what the byte order mark says,
// else UTF-16 where every other byte of the beginning is zero, else what an XML declaration names, else UTF-8. Bytes
// that the encoding does not know, and encodings in which markup would not be ASCII, are failures.
Result<std::u16string, Failure> decodePropertyListText(std::span<std::byte const> data);

} // namespace mac
