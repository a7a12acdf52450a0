#pragma once

#include "platform/foundation/collections/NSArray.h"

namespace mac {

// Two look-ups that answer nil where there is nothing. Caller's thread; a nil receiver answers nil.

// The first element whose value at the key path equals the value: texts by content and case, numbers by value. A nil
// value finds an element whose value is nil or missing. An element that does not know the key raises
// NSUndefinedKeyException.
id pxObjectWithValue_forKeyPath_(NSArray receiver, id value, NSString keyPath);

// The element at the index; nil when the index is not below the count.
id pxObjectAtIndex_(NSArray receiver, NSUInteger index);

} // namespace mac
