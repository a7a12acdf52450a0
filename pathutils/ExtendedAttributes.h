#pragma once

#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"

namespace mac {

// The extended attributes of the item at a path: bytes under names. Links are followed. Nothing is raised or cached,
// and errors are not reported: a failed read answers nil, a failed write NO. The length is asked for before the
// contents; an attribute that changes in between answers nil. Names that have no UTF-8 belong to no attribute. Any
// thread. A nil path answers nil and NO.

// The names of the item's attributes; an empty array if it has none, or if there is no item. The list of names is read
// by advancing characters + 1, not bytes + 1, so a name with characters of several bytes is followed by pieces of
// itself.
// Linux: bytes that are not UTF-8 stand in a name as they do in a path.
NSMutableArray pxExtendedAttributesKeys(NSString receiver);

// The attribute's bytes; nil if the item has no such attribute, or an empty one.
NSData pxExtendedAttributeDataForKey_(NSString receiver, NSString key);
// Creates the attribute or replaces its bytes; nil data removes it. NO if that fails.
bool pxSetExtendedAttributeData_forKey_(NSString receiver, NSData data, NSString key);
// Removes the attribute; NO if the item has no such attribute.
bool pxRemoveExtendedAttributeForKey_(NSString receiver, NSString key);

// The data of all attributes by name, without attributes whose data is nil; nil if the item has no attributes.
NSMutableDictionary pxExtendedAttributes(NSString receiver);
// The data of the attributes with these names, by name; nil if none of them has data. Elements that are no strings are
// ignored.
NSMutableDictionary pxExtendedAttributesForKeys_(NSString receiver, NSArray keys);
// Sets each named attribute to its data. Entries whose key is no string or whose value is no data are ignored.
void pxSetExtendedAttributes_(NSString receiver, NSDictionary attributes);

// The property list that the attribute holds, with mutable containers throughout; nil if there is none, or if its bytes
// are no property list.
id pxExtendedAttributeDictionaryForKey_(NSString receiver, NSString key);
// Writes the property list into the attribute, in the binary format. nil, and a value that is no property list, removes
// the attribute.
bool pxSetExtendedAttributeDictionary_forKey_(NSString receiver, id propertyList, NSString key);
// The property list in the attribute that is named like the identifier of the running program's bundle; nil if there is
// none.
id pxExtendedAttributeDictionary(NSString receiver);
// Writes the property list into the attribute that has the identifier of the running program's bundle for its name; nil
// removes the attribute.
void pxSetExtendedAttributeDictionary_(NSString receiver, id propertyList);

} // namespace mac
