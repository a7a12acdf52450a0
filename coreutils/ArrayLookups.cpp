#include "coreutils/ArrayLookups.h"
#include "platform/foundation/predicates/NSPredicate.h"

namespace mac {

id pxObjectWithValue_forKeyPath_(NSArray receiver, id value, NSString keyPath) {
    if (receiver == nil) return nil;
    NSPredicate const predicate = NSPredicate::predicateWithFormat_("%K == %@", keyPath, value);
    return pxObjectAtIndex_(receiver.filteredArrayUsingPredicate_(predicate), 0);
}

id pxObjectAtIndex_(NSArray receiver, NSUInteger index) {
    return index < receiver.count() ? receiver.objectAtIndex_(index) : id();
}

} // namespace mac
