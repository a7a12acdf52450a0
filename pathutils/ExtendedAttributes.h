#pragma once

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDictionary.h"

namespace mac {

// The extended attributes of the item at a path: bytes under names. Links are followed. Nothing is raised or kept, and
// no error is told: what cannot be read is nil, what cannot be written NO. Lengths are asked for before contents; what
// changes in between is nil. Names that have no UTF-8 belong to no attribute. Any thread. A nil path answers nil and
// NO.

// The names; an empty array where there are none, or no item. Behind a name follows what lies one more than its number
// of characters further, so that a name with characters of several bytes is followed by pieces of itself.
// Linux: bytes that are not UTF-8 stand in a name as they do in a path.
NSMutableArray pxExtendedAttributesKeys(NSString receiver);

// Nil also for an attribute that is there and empty.
NSData pxExtendedAttributeDataForKey_(NSString receiver, NSString key);
// Creates or replaces; nil data removes.
bool pxSetExtendedAttributeData_forKey_(NSString receiver, NSData data, NSString key);
// NO where there is none.
bool pxRemoveExtendedAttributeForKey_(NSString receiver, NSString key);

// Data by name, without those that read as nil; nil where there are no names at all.
NSMutableDictionary pxExtendedAttributes(NSString receiver);
// Of these names; nil where none has data. What is no string in the array is left out.
NSMutableDictionary pxExtendedAttributesForKeys_(NSString receiver, NSArray keys);
// Each name's data. What is no data or no name is left out.
void pxSetExtendedAttributes_(NSString receiver, NSDictionary attributes);

// A property list in an attribute, in the binary format; mutable throughout when it is read. Nil for bytes that are no
// property list.
id pxExtendedAttributeDictionaryForKey_(NSString receiver, NSString key);
// Nil, and what is no property list, removes the attribute.
bool pxSetExtendedAttributeDictionary_forKey_(NSString receiver, id propertyList, NSString key);
// The same under the identifier of the running program's bundle.
id pxExtendedAttributeDictionary(NSString receiver);
// Nil removes it.
void pxSetExtendedAttributeDictionary_(NSString receiver, id propertyList);

} // namespace mac
